#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <nlohmann/json.hpp>
#include <vector>

#include "base/Clock.h"
#include "cli/Command.h"
#include "cli/JsonText.h"
#include "cli/plan/PlanJson.h"
#include "cli/today/ChangeWaiter.h"
#include "cli/today/TodayText.h"
#include "common/ExitCode.h"
#include "common/NextMidnight.h"
#include "common/StoreAccess.h"
#include "store/Database.h"

namespace vantrel::cli {

namespace {

/// What was printed last, as a number, for the process that takes this one's place.
constexpr const char* kShown = "VANTREL_WATCH_SHOWN";

enum class Form { kText, kJson, kBar };

/// When time alone makes the list another: a plan begins, or a day.
Date nextBoundary(const Expected<TodayList>& today) {
  const Date now = Clock::sharedClock().now();
  Date boundary = nextMidnight(now);
  if (!today) return boundary;
  for (const auto& row : today->rows) {
    const auto date = row.plan->date();
    if (date && *date > now) boundary = std::min(boundary, *date);
  }
  return boundary;
}

std::string lineFor(const TodayList& today, Form form) {
  if (form == Form::kBar) return barLine(today);
  return form == Form::kJson ? jsonLine(today) : nextPlanLine(today);
}

std::string lineFor(const Error& error, Form form) {
  if (form == Form::kBar) return barLine(error);
  return form == Form::kJson ? jsonLine({{"error", error.localizedDescription}}) : "";
}

/// This program with the same arguments in this one's place; comes back only when that fails.
void startAgain(std::size_t shown) {
  std::ifstream file("/proc/self/cmdline", std::ios::binary);
  std::string words{std::istreambuf_iterator<char>(file), {}};
  std::vector<char*> arguments;
  for (std::size_t at = 0; at < words.size(); at = words.find('\0', at) + 1) {
    arguments.push_back(&words[at]);
  }
  arguments.push_back(nullptr);
  setenv(kShown, std::to_string(shown).c_str(), 1);
  ::execv("/proc/self/exe", arguments.data());
}

std::size_t shownBefore() {
  const char* text = std::getenv(kShown);
  const std::size_t shown = text ? std::strtoull(text, nullptr, 10) : 0;
  unsetenv(kShown);
  return shown;
}

int watchPlans(const bool& isForBar, Console& console) {
  if (isForBar && console.isJson()) {
    return console.fail(failure(kExitUsage, "watch", "either --waybar or --json"));
  }
  const Form form = isForBar ? Form::kBar : console.isJson() ? Form::kJson : Form::kText;
  const auto store = Database::sharedInstance().groupStoreURL();
  // Without a home there is nothing to wait for.
  if (!store) return console.fail(existingStore().error());
  ChangeWaiter waiter(*store);
  std::size_t shown = shownBefore();
  bool isOpen = false;
  for (;;) {
    if (!isOpen) {
      isOpen = contextForReading().has_value();
      waiter.ignoreStoreChangesSoFar();
    }
    const auto today = todayList(true);
    const std::string line = today ? lineFor(*today, form) : lineFor(today.error(), form);
    const std::size_t now =
        std::hash<std::string>()(today ? line : today.error().localizedDescription);
    if (now != shown) {
      if (!today) console.fail(today.error());
      console.print(line);
      if (!console.flush()) return kExitDone;
      shown = now;
    }
    switch (waiter.wait(nextBoundary(today))) {
      case ChangeWaiter::Event::kStale:
        // A store that failed stays failed for the life of a process.
        if (today || !existingStore()) break;
        [[fallthrough]];
      case ChangeWaiter::Event::kRestart:
        startAgain(shown);
        return console.fail(failure(kExitInternal, "watch", "cannot start again"));
      case ChangeWaiter::Event::kOutputGone:
        return kExitDone;
      case ChangeWaiter::Event::kInterrupted:
        return 128 + waiter.signal();
    }
  }
}

}  // namespace

void fillWatchCommand(CLI::App& parser, Session& session) {
  parser.add_flag("--waybar", setCommand(parser, session, &watchPlans),
                  "Lines of JSON for a status bar");
}

}  // namespace vantrel::cli
