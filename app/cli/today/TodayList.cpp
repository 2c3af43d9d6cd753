#include "cli/today/TodayList.h"

#include "common/ExitCode.h"
#include "common/StoreAccess.h"
#include "time/DeviceSystemMajorVersion.h"
#include "widget/TodayEventsViewController.h"

namespace vantrel::cli {

namespace {

/// The size of a widget in the notification centre.
constexpr Size kMaximumSize{398, 110};
constexpr int kFirstVersionWithModes = 10;

/// Stands in for the notification centre; opens no URLs.
class TerminalHost : public ExtensionContext {
 public:
  bool respondsToWidgetLargestAvailableDisplayMode() const override {
    return DeviceSystemMajorVersion() >= kFirstVersionWithModes;
  }
  void setWidgetLargestAvailableDisplayMode(WidgetDisplayMode mode) override { largest_ = mode; }
  bool offersExpanded() const { return largest_ == WidgetDisplayMode::kExpanded; }
  void openURL(const std::string& /*url*/, std::function<void(bool)> completionHandler) override {
    if (completionHandler) completionHandler(false);
  }

 private:
  WidgetDisplayMode largest_ = WidgetDisplayMode::kCompact;
};

/// Runs the widget once. `nullopt` if it could not fetch the plans, which it shows like an empty
/// store.
std::optional<TodayList> listOfWidget(bool expanded) {
  const auto host = std::make_shared<TerminalHost>();
  TodayEventsViewController controller(kMaximumSize, host);
  controller.loadViewIfNeeded();
  controller.viewWillAppear(false);
  if (expanded && host->offersExpanded()) {
    controller.widgetActiveDisplayModeDidChange(WidgetDisplayMode::kExpanded, kMaximumSize);
  }
  if (!controller.plans()) return std::nullopt;
  const TodayEventsView& view = *controller.todayView();
  TodayList today;
  today.isExpanded = view.showExpanded();
  if (!view.messageLabel().isHidden()) today.message = view.messageLabel().text();
  const auto& plans = controller.plans();
  for (std::size_t row = 0; plans && row < plans->size(); ++row) {
    const auto& title = view.planTitleLabels()[row];
    if (title->isHidden()) break;
    today.rows.push_back({(*plans)[row], title->text(), view.planDateLabels()[row]->text()});
  }
  return today;
}

}  // namespace

Expected<TodayList> todayList(bool isExpanded) {
  if (const auto store = existingStore(); !store) return tl::unexpected(store.error());
  constexpr int kTries = 2;
  for (int i = 0; i < kTries; ++i) {
    if (auto today = listOfWidget(isExpanded)) return *std::move(today);
    // The widget drops the error, so another fetch has to report it; if that succeeds, try again.
    if (const auto context = contextForReading(); !context) {
      return tl::unexpected(context.error());
    }
  }
  return tl::unexpected(failure(kExitInputOutput, "store", "the plans cannot be read"));
}

}  // namespace vantrel::cli
