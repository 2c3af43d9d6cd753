#include "cli/Command.h"
#include "cli/plan/PlanJson.h"
#include "cli/today/TodayText.h"
#include "common/ExitCode.h"

namespace vantrel::cli {

namespace {

struct Request {
  bool isExpanded = false;
  bool isForBar = false;
};

int showToday(const Request& request, Console& console) {
  if (request.isForBar && console.isJson()) {
    return console.fail(failure(kExitUsage, "today", "either --waybar or --json"));
  }
  const auto today = todayList(request.isExpanded || request.isForBar);
  if (!today) return console.fail(today.error());
  console.print(request.isForBar   ? barLine(*today)
                : console.isJson() ? jsonText(*today)
                                   : todayText(*today, console));
  return kExitDone;
}

}  // namespace

void fillTodayCommand(CLI::App& parser, Session& session) {
  Request& request = setCommand(parser, session, &showToday);
  parser.add_flag("--expanded", request.isExpanded,
                  "All the next plans, five at most, instead of two");
  parser.add_flag("--waybar", request.isForBar, "One line of JSON for a status bar");
}

}  // namespace vantrel::cli
