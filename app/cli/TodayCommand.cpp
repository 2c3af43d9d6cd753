#include <CLI/App.hpp>
#include <memory>

#include "cli/CommandGroup.h"
#include "cli/ExitCode.h"
#include "cli/PlanJson.h"
#include "cli/PlanText.h"
#include "cli/StoreAccess.h"
#include "cli/TerminalText.h"
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

/// Two lines for each row, as on the card. The card tells each plan in its own zone without saying
/// so; here it is said where the clock here shows something else.
std::string todayText(const TodayList& today, const Console& console) {
  std::string text;
  if (today.message) text += *today.message + "\n";
  for (const auto& row : today.rows) {
    if (!text.empty()) text += "\n";
    text += console.bold(row.title.empty() ? "--" : printable(row.title)) + "\n";
    text += "  " + row.dateText;
    if (const auto date = row.plan->date()) {
      const TimeZone zone = zoneOfPlan(*row.plan);
      if (const auto here = hereText(*date, zone)) {
        text += "  " + console.dim(zone.name() + ", " + *here);
      }
    }
    text += "\n";
  }
  return text;
}

int showToday(bool expanded, Console& console) {
  // The widget shows a store that cannot be read as an empty one.
  const auto context = contextForReading();
  if (!context) return console.fail(context.error());
  const TodayList today = todayList(expanded);
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
