#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "platform/view/Label.h"
#include "store/Planning.h"
#include "widget/TodayViewDelegate.h"
#include "widget/TodayViewLabel.h"

namespace vantrel {

/// Lists the next plans, each a title over its date, or tells that there are none. Rows exist for
/// the view's whole life and are shown, hidden and moved. Main thread.
class TodayEventsView final : public View {
 public:
  static constexpr std::size_t kRowCount = 5;
  /// Nothing reads like an empty list.
  using Plans = std::optional<std::vector<std::shared_ptr<Planning>>>;
  using Labels = std::array<std::unique_ptr<TodayViewLabel>, kRowCount>;

  /// Starts expanded before system version 10, compact since.
  explicit TodayEventsView(const Rect& frame);

  const EdgeInsets& marginInsets() const { return marginInsets_; }
  /// Holds from the next layout on; only `left` counts.
  void setMarginInsets(const EdgeInsets& insets) { marginInsets_ = insets; }
  std::shared_ptr<TodayViewDelegate> delegate() const { return delegate_.lock(); }
  void setDelegate(const std::weak_ptr<TodayViewDelegate>& delegate) { delegate_ = delegate; }
  /// The height that the last layout needed.
  double contentHeight() const { return contentHeight_; }
  bool showExpanded() const { return showExpanded_; }
  /// All rows when expanded, else at most two. Lays out at once.
  void setShowExpanded(bool showExpanded);

  /// Shows these plans in this order, the first five of them. Lays out at once.
  void updateData(Plans plans);
  void layoutSubviews() override;

  /// Highlights a row, ends its highlight, or reports it as tapped. Rows out of range are ignored.
  void selectLabel(int row);
  void deselectLabel(int row);
  void didTapOnLabel(int row);

  /// For hosts, which draw the labels and touch those of the rows; owned by the view.
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
  /// What the labels' touches are bound to. Last, so that it goes first.
  std::shared_ptr<void> lifetime_ = std::make_shared<char>();
};

}  // namespace vantrel
