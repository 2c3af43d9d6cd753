#include <cmath>
#include <string>
#include <variant>

#include "Targets.h"
#include "cli/exchange/CalendarReader.h"
#include "cli/exchange/JsonReader.h"
#include "common/ExitCode.h"
#include "platform/text/Utf8.h"

namespace vantrel::fuzz {

namespace {

void checkDrafts(const Expected<cli::PlanDrafts>& drafts) {
  if (!drafts) {
    promise(drafts.error().code == kExitBadData, "what makes no sense is bad data");
    return;
  }
  promise(drafts->plans.size() <= cli::kMostPlansRead, "plans are counted");
  for (const auto& plan : drafts->plans) {
    promise(plan.identifier.value_or("").size() <= cli::kLongestIdentifier,
            "an identifier is bounded");
    for (const auto& [key, value] : plan.values) {
      const auto* text = std::get_if<std::string>(&value);
      promise(!text || isUtf8(*text), "what was read is text");
      const auto* degrees = std::get_if<double>(&value);
      promise(!degrees || std::isfinite(*degrees), "a coordinate is a number");
      const auto* date = std::get_if<Date>(&value);
      promise(!date || std::isfinite(date->timeIntervalSinceReferenceDate()), "a date is a number");
    }
  }
}

}  // namespace

void calendar(Bytes input) {
  checkDrafts(cli::draftsFromCalendar(textOf(input), [](std::size_t, std::size_t) {}));
}

void planList(Bytes input) {
  checkDrafts(cli::draftsFromJson(textOf(input)));
}

}  // namespace vantrel::fuzz
