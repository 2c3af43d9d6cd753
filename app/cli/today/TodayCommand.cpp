#include "cli/Command.h"
#include "cli/plan/PlanJson.h"
#include "cli/today/TodayText.h"
#include "common/ExitCode.h"

namespace vantrel::cli {

namespace {

struct TodayOptions {
  bool isExpanded = false;
  bool isForBar = false;
};

int showToday(const TodayOptions& options, Console& console) {
  if (options.isForBar && console.isJson()) {
    return console.fail(failure(kExitUsage, "today", "expected only one of --waybar and --json"));
  }
  const auto today = todayList(options.isExpanded || options.isForBar);
  if (!today) return console.fail(today.error());
  console.print(options.isForBar   ? barLine(*today)
                : console.isJson() ? jsonText(*today)
                                   : todayText(*today, console));
  return kExitDone;
}

}  // namespace

void fillTodayCommand(CLI::App& parser, Session& session) {
  TodayOptions& options = setCommand(parser, session, &showToday);
  parser.add_flag("--expanded", options.isExpanded, "Show up to five plans instead of two");
  parser.add_flag("--waybar", options.isForBar, "Print one line of JSON for a status bar");
}

}  // namespace vantrel::cli
