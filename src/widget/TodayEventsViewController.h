#pragma once

#include <memory>

#include "platform/view/ViewController.h"
#include "platform/view/WidgetProviding.h"
#include "widget/TodayEventsView.h"

namespace vantrel {

/// The widget: fetches the next plans once in its life, shows them, keeps its preferred height in
/// step with its mode, and opens the plan that is tapped. A host ends this life and starts another
/// to see other plans. Main thread.
class TodayEventsViewController final : public ViewController,
                                        public WidgetProviding,
                                        public TodayViewDelegate {
 public:
  using ViewController::ViewController;

  void loadView() override;
  void viewDidLoad() override;
  void viewWillAppear(bool animated) override;
  /// Shows what was fetched before and always reports new data.
  void widgetPerformUpdateWithCompletionHandler(
      const std::function<void(WidgetUpdateResult)>& completionHandler) override;
  void widgetActiveDisplayModeDidChange(WidgetDisplayMode mode, Size maximumSize) override;
  /// Asks the host to open "vantrel://plan?id=" and the plan's URI. Taps on no plan are ignored.
  void todayViewDidTapOnView(TodayEventsView& view, int type, int index) override;
  void todayViewDidLayout() override { updateWidgetHeight(); }

  /// Fetches at most five plans from the start of the current day on, by date. A failed fetch reads
  /// as no plans.
  void loadNextPlans();
  void displayData();
  /// Takes over the view's content height, whole pixels of it, unless it is the preferred height.
  void updateWidgetHeight();

  /// The content; null before the view is loaded. Owned by the controller.
  TodayEventsView* todayView() const { return todayView_.get(); }
  /// The result of the last fetch; row i of the view shows plan i.
  const TodayEventsView::Plans& plans() const { return plans_; }

 private:
  void preferContentHeight();

  std::unique_ptr<TodayEventsView> todayView_;
  TodayEventsView::Plans plans_;
  /// What the view's reports are bound to. Last, so that it goes first.
  std::shared_ptr<void> lifetime_ = std::make_shared<char>();
};

}  // namespace vantrel
