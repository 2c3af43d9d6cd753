#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "platform/view/Label.h"
#include "store/Planning.h"
#include "widget/TodayViewLabel.h"

namespace vantrel {

class DateFormatter;
class TodayEventsView;

/// Receives the events of a TodayEventsView. Main thread only.
class TodayViewDelegate {
 public:
  virtual ~TodayViewDelegate() = default;
  /// A row was tapped; `index` is that of its plan.
  virtual void todayViewDidTapOnView(TodayEventsView& view, int type, int index) = 0;
  /// For views that report their layout; TodayEventsView does not call it.
  virtual void todayViewDidLayout() {}
};

/// Lists the next plans, each as a title over its date, or a message if there are none. The labels
/// are created once and shown, hidden and moved. Main thread only.
class TodayEventsView final : public View {
 public:
  static constexpr std::size_t kRowCount = 5;
  /// `nullopt` is shown like an empty list.
  using Plans = std::optional<std::vector<std::shared_ptr<Planning>>>;
  using Labels = std::array<std::unique_ptr<TodayViewLabel>, kRowCount>;

  /// Writes the dates of the rows. Creating a formatter takes as long as writing a hundred dates,
  /// so the process shares one: set its zone and styles before each use.
  static DateFormatter& sharedDateFormatter();

  /// Initially expanded before system version 10, otherwise compact.
  explicit TodayEventsView(const Rect& frame);

  const EdgeInsets& marginInsets() const { return marginInsets_; }
  /// Takes effect at the next layout. Only `left` is used.
  void setMarginInsets(const EdgeInsets& insets) { marginInsets_ = insets; }
  std::shared_ptr<TodayViewDelegate> delegate() const { return delegate_.lock(); }
  void setDelegate(const std::weak_ptr<TodayViewDelegate>& delegate) { delegate_ = delegate; }
  /// The height of the content at the last layout.
  double contentHeight() const { return contentHeight_; }
  bool showExpanded() const { return showExpanded_; }
  /// Shows all rows if expanded, otherwise at most two. Lays out immediately.
  void setShowExpanded(bool showExpanded);

  /// Shows the first five plans in this order. Lays out immediately.
  void updateData(Plans plans);
  void layoutSubviews() override;

  /// Highlight a row, remove the highlight, report a tap. An unknown row is not highlighted.
  void selectLabel(int row);
  void deselectLabel(int row);
  void didTapOnLabel(int row);

  /// For hosts that draw the labels and forward touches to them. Owned by the view.
  const Label& messageLabel() const { return *messageLabel_; }
  const Labels& planTitleLabels() const { return planTitleLabels_; }
  const Labels& planDateLabels() const { return planDateLabels_; }

 private:
  std::unique_ptr<TodayViewLabel> todayTextLabel();
  Labels labelsArrayWithFont(const Font& font);
  double layoutPlansInfo(double unused);
  double layoutMessageLabel(double width);
  double layoutRow(std::size_t row, Point origin, double width);
  std::size_t numberOfRowsToShow() const;
  void setTextColor(const Color& color, int row);

  std::unique_ptr<Label> messageLabel_;
  Labels planTitleLabels_;
  Labels planDateLabels_;
  Plans plans_;
  bool showExpanded_ = false;
  std::weak_ptr<TodayViewDelegate> delegate_;
  double contentHeight_ = 0;
  EdgeInsets marginInsets_;
  /// The labels' actions hold it weakly. Last member, so that it is destroyed first.
  std::shared_ptr<void> lifetime_ = std::make_shared<char>();
};

}  // namespace vantrel
