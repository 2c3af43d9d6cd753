#include "today/WidgetHost.h"

#include <algorithm>
#include <utility>

#include "time/DeviceSystemMajorVersion.h"
#include "today/InterfaceText.h"

namespace vantrel {

namespace {

constexpr double kCompactHeight = 110;
/// The message of an empty list needs less height than two plans.
constexpr double kEmptyHeight = 64;
constexpr double kBottomAir = 8;
/// The default inset of old hosts for a widget that sets no margins.
constexpr double kOldInset = 37;
constexpr int kFirstVersionWithModes = 10;

double bodyInset() {
  return DeviceSystemMajorVersion() < kFirstVersionWithModes ? kOldInset : 0;
}

}  // namespace

class WidgetHost::Context : public ExtensionContext {
 public:
  explicit Context(const LinkHandler& linkHandler) : linkHandler_(linkHandler) {}

  bool respondsToWidgetLargestAvailableDisplayMode() const override {
    return DeviceSystemMajorVersion() >= kFirstVersionWithModes;
  }
  void setWidgetLargestAvailableDisplayMode(WidgetDisplayMode mode) override { largest_ = mode; }
  WidgetDisplayMode largestMode() const { return largest_; }
  void openURL(const std::string& url, std::function<void(bool)> completionHandler) override {
    if (linkHandler_) linkHandler_(url);
    if (completionHandler) completionHandler(static_cast<bool>(linkHandler_));
  }

 private:
  LinkHandler linkHandler_;
  WidgetDisplayMode largest_ = WidgetDisplayMode::kCompact;
};

WidgetHost::WidgetHost(LinkHandler linkHandler) : linkHandler_(std::move(linkHandler)) {}

WidgetHost::~WidgetHost() = default;

void WidgetHost::beginLife(double cardWidth, WidgetDisplayMode mode) {
  cardWidth_ = cardWidth;
  mode_ = mode;
  context_ = std::make_shared<Context>(linkHandler_);
  controller_ = std::make_unique<TodayEventsViewController>(
      Size{cardWidth - bodyInset(), maximumSize().height}, context_);
  controller_->loadViewIfNeeded();
  controller_->viewWillAppear(false);
  setMode(mode);
  controller_->viewDidAppear(false);
  controller_->widgetPerformUpdateWithCompletionHandler([](WidgetUpdateResult) {});
}

Size WidgetHost::maximumSize() const {
  return {cardWidth_ - bodyInset(), kCompactHeight * std::max(textScale_, 1.0)};
}

bool WidgetHost::offersModes() const {
  return context_ && context_->largestMode() == WidgetDisplayMode::kExpanded;
}

void WidgetHost::setMode(WidgetDisplayMode mode) {
  mode_ = mode;
  if (controller_ && offersModes()) {
    controller_->widgetActiveDisplayModeDidChange(mode, maximumSize());
  }
}

bool WidgetHost::setCardWidth(double width) {
  if (!controller_ || width == cardWidth_) return false;
  cardWidth_ = width;
  Rect frame = controller_->view()->frame();
  frame.size.width = maximumSize().width;
  controller_->view()->setFrame(frame);
  controller_->view()->layoutIfNeeded();
  setMode(mode_);
  return true;
}

double WidgetHost::bodyHeight() const {
  const TodayEventsView& view = *controller_->todayView();
  const double asked =
      offersModes() ? controller_->preferredContentSize().height : view.contentHeight();
  double lowest = 0;
  for (const auto& label : view.planDateLabels()) {
    if (!label->isHidden()) lowest = std::max(lowest, label->frame().bottom());
  }
  // Long titles and large text may need more height than the compact mode has; a host may grant it.
  if (lowest > 0) return std::max(asked, lowest + kBottomAir);
  return std::max(kEmptyHeight, view.messageLabel().frame().bottom() + kBottomAir);
}

void WidgetHost::describe(CardContent& content) const {
  content.rows.clear();
  content.message = nullptr;
  if (!controller_) return;
  const TodayEventsView& view = *controller_->todayView();
  for (std::size_t i = 0; i < view.planTitleLabels().size(); ++i) {
    const auto& title = view.planTitleLabels()[i];
    if (!title->isHidden()) content.rows.push_back({title.get(), view.planDateLabels()[i].get()});
  }
  if (!view.messageLabel().isHidden()) content.message = &view.messageLabel();
  content.untouchedText = view.messageLabel().textColor();
  content.bodyInset = bodyInset();
  content.bodyHeight = bodyHeight();
  content.action.clear();
  if (!offersModes()) return;
  const bool expanded = mode_ == WidgetDisplayMode::kExpanded;
  content.action = localized(expanded ? "today_show_less" : "today_show_more");
}

std::shared_ptr<const Planning> WidgetHost::plan(std::size_t row) const {
  if (!controller_ || !controller_->plans()) return nullptr;
  const auto& plans = *controller_->plans();
  return row < plans.size() ? plans[row] : nullptr;
}

void WidgetHost::touch(std::size_t row, TouchPhase phase) {
  if (!controller_ || row >= TodayEventsView::kRowCount) return;
  // Both labels of a row handle a touch in the same way.
  TodayViewLabel& label = *controller_->todayView()->planTitleLabels()[row];
  switch (phase) {
    case TouchPhase::kBegan:
      return label.touchesBegan({});
    case TouchPhase::kEnded:
      return label.touchesEnded({});
    case TouchPhase::kCancelled:
      return label.touchesCancelled({});
  }
}

}  // namespace vantrel
