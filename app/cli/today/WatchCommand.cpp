#include <unistd.h>

#include <algorithm>
#include <chrono>
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
#include "common/Staleness.h"
#include "common/StoreAccess.h"
#include "store/Database.h"

namespace vantrel::cli {

namespace {

/// Passes the hash of the last output to the process that replaces this one.
constexpr const char* kShown = "VANTREL_WATCH_SHOWN";

/// The shortest time between two restarts.
constexpr std::chrono::seconds kRestartPause{1};

enum class Form { kText, kJson, kBar };

/// Returns when the list changes next without a change of the store: a plan or a day begins.
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

/// Returns when to read a busy store again.
Date soon() {
  return Clock::sharedClock().now().dateByAddingTimeInterval(kBusyStoreSeconds);
}

std::string lineFor(const TodayList& today, Form form) {
  if (form == Form::kBar) return barLine(today);
  return form == Form::kJson ? jsonLine(today) : nextPlanLine(today);
}

std::string lineFor(const Error& error, Form form) {
  if (form == Form::kBar) return barLine(error);
  return form == Form::kJson ? jsonLine({{"error", error.localizedDescription}}) : "";
}

/// Restarts this program with the same arguments; returns only on failure.
void restart(std::size_t shown) {
  std::string words;
  {
    // Closed before execv, so that the new program does not inherit it.
    std::ifstream file("/proc/self/cmdline", std::ios::binary);
    words.assign(std::istreambuf_iterator<char>(file), {});
  }
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

bool isBusy(const Expected<TodayList>& today) {
  return !today && exitCodeForError(today.error()) == kExitTryAgain;
}

int watchPlans(const bool& isForBar, Console& console) {
  if (isForBar && console.isJson()) {
    return console.fail(failure(kExitUsage, "watch", "expected only one of --waybar and --json"));
  }
  const Form form = isForBar ? Form::kBar : console.isJson() ? Form::kJson : Form::kText;
  const auto store = Database::sharedInstance().groupStoreURL();
  // Without a home folder there is no path to watch.
  if (!store) return console.fail(existingStore().error());
  const auto started = std::chrono::steady_clock::now();
  ChangeWaiter waiter(*store);
  if (waiter.isPolling()) {
    console.tell("vantrel: watch: no file watches available; polling every 2 seconds\n");
  }
  std::size_t shown = shownBefore();
  bool isOpen = false;
  bool wasBusy = false;
  for (;;) {
    if (!isOpen) {
      isOpen = contextForReading().has_value();
      waiter.ignoreStoreChangesSoFar();
    }
    const auto today = todayList(true);
    const bool keepsAnswer = shown != 0 && isBusy(today);
    if (keepsAnswer && !wasBusy) console.fail(today.error());
    wasBusy = keepsAnswer;
    const std::string line = today ? lineFor(*today, form) : lineFor(today.error(), form);
    const std::size_t now =
        std::hash<std::string>()(today ? line : today.error().localizedDescription);
    if (now != shown && !keepsAnswer) {
      if (!today) console.fail(today.error());
      console.print(line);
      if (!console.flush()) return kExitDone;
      shown = now;
    }
    auto event = waiter.wait(isBusy(today) ? soon() : nextBoundary(today));
    // A process opens the store only once, even if that fails.
    if (event == ChangeWaiter::Event::kStale && !today && !isOpen && existingStore()) {
      event = ChangeWaiter::Event::kRestart;
    }
    if (event == ChangeWaiter::Event::kRestart) {
      const auto left = kRestartPause - (std::chrono::steady_clock::now() - started);
      event =
          waiter.settle(std::chrono::ceil<std::chrono::milliseconds>(std::max(left, left.zero())))
              .value_or(event);
    }
    switch (event) {
      case ChangeWaiter::Event::kStale:
        break;
      case ChangeWaiter::Event::kRestart:
        restart(shown);
        return console.fail(failure(kExitInternal, "watch", "cannot restart"));
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
                  "Print lines of JSON for a status bar");
}

}  // namespace vantrel::cli
