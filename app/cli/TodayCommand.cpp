#include <CLI/App.hpp>
#include <memory>

#include "cli/CommandGroup.h"
#include "cli/ExitCode.h"
#include "cli/PlanJson.h"
#include "cli/PlanText.h"
#include "cli/StoreAccess.h"
#include "cli/TerminalText.h"
#include "platform/DateFormatter.h"
#include "time/DeviceSystemMajorVersion.h"
#include "widget/TodayEventsViewController.h"

namespace vantrel::cli {

namespace {

/// The room that the notification centre gives a widget.
constexpr Size kMaximumSize{398, 110};
constexpr int kFirstVersionWithModes = 10;

/// Plays the notification centre to the widget; nothing can be tapped here.
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

/// One life of the widget, and what it shows in it.
TodayList todayList(bool expanded) {
  const auto host = std::make_shared<TerminalHost>();
  TodayEventsViewController controller(kMaximumSize, host);
  controller.loadViewIfNeeded();
  controller.viewWillAppear(false);
  if (expanded && host->offersExpanded()) {
    controller.widgetActiveDisplayModeDidChange(WidgetDisplayMode::kExpanded, kMaximumSize);
  }
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

/// The clock here, where it shows something else than the plan's: "Europe/Athens, 5:20 AM here".
std::optional<std::string> localText(const Planning& plan, DateFormatter& formatter) {
  const auto date = plan.date();
  const TimeZone zone = zoneOfPlan(plan);
  if (!date || !hereText(*date, zone)) return std::nullopt;
  using Style = DateFormatter::Style;
  const auto styled = [&](Style day, Style time, const std::optional<TimeZone>& shown) {
    formatter.setTimeZone(shown);
    formatter.setDateStyle(day);
    formatter.setTimeStyle(time);
    return formatter.stringFromDate(*date);
  };
  const std::string day = styled(Style::kShort, Style::kNone, std::nullopt);
  const bool sameDay = day == styled(Style::kShort, Style::kNone, zone);
  const std::string time = styled(Style::kNone, Style::kShort, std::nullopt);
  return zone.name() + ", " + (sameDay ? "" : day + " ") + time + " here";
}

/// Two lines for each row, as on the card. The card tells each plan in its own zone without saying
/// so; here that is said.
std::string todayText(const TodayList& today, const Console& console) {
  DateFormatter formatter;
  std::string text;
  if (today.message) text += *today.message + "\n";
  for (const auto& row : today.rows) {
    if (!text.empty()) text += "\n";
    text += console.bold(row.title.empty() ? "--" : printable(row.title)) + "\n  " + row.dateText;
    if (const auto local = localText(*row.plan, formatter)) text += "  " + console.dim(*local);
    text += "\n";
  }
  return text;
}

int showToday(bool isExpanded, Console& console) {
  if (const auto store = existingStore(); !store) return console.fail(store.error());
  const TodayList today = todayList(isExpanded);
  if (today.rows.empty()) {
    // The widget takes a store that cannot be read for an empty one; a fetch of our own tells.
    const auto context = contextForReading();
    if (!context) return console.fail(context.error());
  }
  console.print(console.isJson() ? jsonText(today) : todayText(today, console));
  return kExitDone;
}

}  // namespace

void fillTodayCommand(CLI::App& parser, Session& session) {
  const auto expanded = std::make_shared<bool>(false);
  parser.add_flag("--expanded", *expanded, "All the next plans, five at most, instead of two");
  parser.callback(
      [expanded, &session] { session.exitCode = showToday(*expanded, session.console); });
}

}  // namespace vantrel::cli
