#include "widget/TodayEventsView.h"

#include <algorithm>
#include <utility>

#include "appearance/Color+Constants.h"
#include "base/StringFormat.h"
#include "platform/system/Bundle.h"
#include "platform/text/DateFormatter.h"
#include "platform/view/TextMeasurer.h"
#include "time/DeviceSystemMajorVersion.h"
#include "widget/TodayUtils.h"

namespace vantrel {

namespace {

constexpr double kFontSize = 15;
constexpr int kMaximumLines = 2;
constexpr int kTapType = 3;
constexpr std::size_t kCompactRows = 2;
constexpr std::size_t kFirstColumnRows = 3;
constexpr double kTopMargin = 12;
constexpr double kRightMargin = 11;
constexpr double kBottomMargin = 8;
constexpr double kTitleToDate = 5;
constexpr double kExpandedGap = 12;
constexpr double kCompactGap = 8;
/// Added to each row in the reported height, in both modes.
constexpr double kReportedGap = 12;
constexpr double kUnlimitedHeight = 10000;

double boundingHeight(const Label& label, double width) {
  return TextMeasurer::sharedMeasurer()
      .boundingSizeOfText(label.text(), label.font(), {width, kUnlimitedHeight})
      .height;
}

/// Height of the text wrapped at `width`, at most two lines.
double heightOfAtMostTwoLines(const Label& label, double width) {
  const auto& measurer = TextMeasurer::sharedMeasurer();
  const double twoLines = 2 * measurer.sizeOfText(label.text(), label.font()).height;
  return std::min(twoLines, boundingHeight(label, width));
}

/// Date and time in the plan's zone, or in the device's if the plan's is unknown.
std::string dateText(const Planning& plan) {
  using Style = DateFormatter::Style;
  const auto date = plan.date();
  if (!date) return {};
  const auto zoneName = plan.timezone();
  DateFormatter& formatter = TodayEventsView::sharedDateFormatter();
  formatter.setTimeZone(zoneName ? TimeZone::timeZoneWithName(*zoneName) : std::nullopt);
  formatter.setDateStyle(Style::kShort);
  formatter.setTimeStyle(Style::kNone);
  const std::string day = formatter.stringFromDate(*date);
  formatter.setDateStyle(Style::kNone);
  formatter.setTimeStyle(Style::kShort);
  return stringWithFormat("%@ %@", {day, formatter.stringFromDate(*date)});
}

}  // namespace

DateFormatter& TodayEventsView::sharedDateFormatter() {
  static DateFormatter formatter;
  return formatter;
}

TodayEventsView::TodayEventsView(const Rect& frame)
    : View(frame), messageLabel_(TodayUtils::textLabel()) {
  messageLabel_->setNumberOfLines(0);
  addSubview(*messageLabel_);
  planTitleLabels_ = labelsArrayWithFont(Font::boldSystemFontOfSize(kFontSize));
  planDateLabels_ = labelsArrayWithFont(Font::systemFontOfSize(kFontSize));
  setShowExpanded(DeviceSystemMajorVersion() < 10);
}

void TodayEventsView::setShowExpanded(bool showExpanded) {
  showExpanded_ = showExpanded;
  setNeedsLayout();
  layoutIfNeeded();
}

std::unique_ptr<TodayViewLabel> TodayEventsView::todayTextLabel() {
  auto label = std::make_unique<TodayViewLabel>();
  TodayUtils::applyTextStyle(*label);
  label->setTarget(
      lifetime_, [this](int row) { selectLabel(row); }, TodayViewLabel::kTouchBegan);
  label->setTarget(
      lifetime_, [this](int row) { deselectLabel(row); }, TodayViewLabel::kTouchCancelled);
  label->setTarget(
      lifetime_, [this](int row) { didTapOnLabel(row); }, TodayViewLabel::kTouchEnd);
  return label;
}

TodayEventsView::Labels TodayEventsView::labelsArrayWithFont(const Font& font) {
  Labels labels;
  for (std::size_t row = 0; row < kRowCount; ++row) {
    labels[row] = todayTextLabel();
    labels[row]->setNumberOfLines(kMaximumLines);
    labels[row]->setFont(font);
    labels[row]->setTag(static_cast<int>(row));
    addSubview(*labels[row]);
  }
  return labels;
}

void TodayEventsView::updateData(Plans plans) {
  plans_ = std::move(plans);
  if (!plans_ || plans_->empty()) {
    messageLabel_->setText(Bundle::mainBundle().localizedString("plan_no_scheduled", "", "Common"));
  }
  setNeedsLayout();
  layoutIfNeeded();
}

void TodayEventsView::layoutSubviews() {
  View::layoutSubviews();
  contentHeight_ = layoutPlansInfo(0);
}

// Rows are 8 or 12 apart, yet each adds 12 to the reported height: hosts rely on both.
double TodayEventsView::layoutPlansInfo(double /*unused*/) {
  const double left = marginInsets_.left;
  const double width = frame().size.width;
  const double top = layoutMessageLabel(width - left - kRightMargin);
  const bool twoColumns = TodayUtils::shouldLayoutWithTwoColumns(frame());
  const double labelWidth =
      twoColumns ? (width - 2 * left - kRightMargin) * 0.5 : width - left - kRightMargin;
  const std::size_t rows = numberOfRowsToShow();
  const double gap = showExpanded_ ? kExpandedGap : kCompactGap;

  Point origin{left, gap};
  std::array<double, 2> columnHeights{};
  for (std::size_t row = 0; row < kRowCount; ++row) {
    planTitleLabels_[row]->setHidden(row >= rows);
    planDateLabels_[row]->setHidden(row >= rows);
    if (row >= rows) continue;
    const double height = layoutRow(row, origin, labelWidth);
    const bool secondColumn = twoColumns && row >= kFirstColumnRows;
    columnHeights[secondColumn ? 1 : 0] += height + kReportedGap;
    origin.y = origin.y + gap + height;
    if (twoColumns && row + 1 == kFirstColumnRows) {
      origin = {planTitleLabels_[row]->frame().right() + left, kTopMargin};
    }
  }
  return top + std::max(columnHeights[0], columnHeights[1]) + kBottomMargin;
}

/// Shows or hides the message. Returns the part of the reported height above the rows.
double TodayEventsView::layoutMessageLabel(double width) {
  const bool hasPlans = plans_ && !plans_->empty();
  messageLabel_->setHidden(hasPlans);
  if (hasPlans) return kTopMargin;
  const double height = boundingHeight(*messageLabel_, width);
  messageLabel_->setFrame({{marginInsets_.left, kTopMargin}, {width, height}});
  return height + kTopMargin;
}

double TodayEventsView::layoutRow(std::size_t row, Point origin, double width) {
  const Planning& plan = *(*plans_)[row];
  TodayViewLabel& title = *planTitleLabels_[row];
  TodayViewLabel& date = *planDateLabels_[row];
  title.setText(plan.name().value_or(""));
  date.setText(dateText(plan));
  const double titleHeight = heightOfAtMostTwoLines(title, width);
  const double dateHeight = heightOfAtMostTwoLines(date, width);
  title.setFrame({origin, {width, titleHeight}});
  date.setFrame({{origin.x, origin.y + titleHeight + kTitleToDate}, {width, dateHeight}});
  return titleHeight + kTitleToDate + dateHeight;
}

std::size_t TodayEventsView::numberOfRowsToShow() const {
  if (!plans_) return 0;
  return showExpanded_ ? plans_->size() : std::min(plans_->size(), kCompactRows);
}

void TodayEventsView::selectLabel(int row) {
  setTextColor(palette::vantrelYellow(), row);
}

// White, whatever the initial colour was: hosts draw a dark background behind a touched row.
void TodayEventsView::deselectLabel(int row) {
  setTextColor(Color::whiteColor(), row);
}

void TodayEventsView::didTapOnLabel(int row) {
  // The delegate may destroy this view.
  const std::weak_ptr<void> lifetime = lifetime_;
  if (const auto receiver = delegate()) receiver->todayViewDidTapOnView(*this, kTapType, row);
  if (!lifetime.expired()) deselectLabel(row);
}

void TodayEventsView::setTextColor(const Color& color, int row) {
  if (row < 0 || row >= static_cast<int>(kRowCount)) return;
  for (const Labels* labels : {&planTitleLabels_, &planDateLabels_}) {
    TodayViewLabel& label = *(*labels)[static_cast<std::size_t>(row)];
    label.setTextColor(color);
    label.setNeedsDisplay();
  }
}

}  // namespace vantrel
