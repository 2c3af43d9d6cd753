#pragma once

#include <memory>

#include "platform/view/ViewController.h"
#include "platform/view/WidgetProviding.h"
#include "widget/TodayEventsView.h"

namespace vantrel {

/// The widget: fetches the next plans once, when its view is loaded, shows them, sets its preferred
/// height for the display mode and opens the tapped plan. To fetch again, a host creates a new
/// controller. Main thread only.
class TodayEventsViewController final : public ViewController,
                                        public WidgetProviding,
                                        public TodayViewDelegate {
 public:
  using ViewController::ViewController;

  void loadView() override;
  void viewDidLoad() override;
  void viewWillAppear(bool animated) override;
  /// Displays the fetched plans again and always reports new data.
  void widgetPerformUpdateWithCompletionHandler(
      const std::function<void(WidgetUpdateResult)>& completionHandler) override;
  void widgetActiveDisplayModeDidChange(WidgetDisplayMode mode, Size maximumSize) override;
  /// Opens the plan's deepLink() through the host. Ignores an index without a plan.
  void todayViewDidTapOnView(TodayEventsView& view, int type, int index) override;
  void todayViewDidLayout() override { updateWidgetHeight(); }

  /// Fetches at most five plans from the start of the current day on, by date. After a failed fetch
  /// plans() is `nullopt`.
  void loadNextPlans();
  void displayData();
  /// Prefers the view's content height, truncated to whole pixels, unless it is exactly the
  /// preferred height.
  void updateWidgetHeight();

  /// Null until the view is loaded. Owned by the controller.
  TodayEventsView* todayView() const { return todayView_.get(); }
  /// The last fetched plans; row i of the view shows plan i.
  const TodayEventsView::Plans& plans() const { return plans_; }

 private:
  void preferContentHeight();

  std::unique_ptr<TodayEventsView> todayView_;
  TodayEventsView::Plans plans_;
  /// The view holds it weakly as its delegate. Last member, so that it is destroyed first.
  std::shared_ptr<void> lifetime_ = std::make_shared<char>();
};

}  // namespace vantrel
