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
    require(drafts.error().code == kExitBadData, "errors are bad data");
    return;
  }
  require(drafts->plans.size() <= cli::kMostPlansRead, "the number of plans is limited");
  for (const auto& plan : drafts->plans) {
    require(plan.identifier.value_or("").size() <= cli::kLongestIdentifier,
            "an identifier is limited in length");
    for (const auto& [key, value] : plan.values) {
      const auto* text = std::get_if<std::string>(&value);
      require(!text || isUtf8(*text), "texts are UTF-8");
      const auto* degrees = std::get_if<double>(&value);
      require(!degrees || std::isfinite(*degrees), "a coordinate is finite");
      const auto* date = std::get_if<Date>(&value);
      require(!date || std::isfinite(date->timeIntervalSinceReferenceDate()), "a date is finite");
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
