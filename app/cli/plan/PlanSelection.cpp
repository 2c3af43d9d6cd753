#include "cli/plan/PlanSelection.h"

#include <algorithm>
#include <string_view>

#include "base/Ascii.h"
#include "base/Iso8601.h"
#include "cli/Arguments.h"
#include "cli/Suggestion.h"
#include "cli/plan/PlanText.h"
#include "common/ExitCode.h"
#include "common/LinkedPlan.h"
#include "common/StoreAccess.h"
#include "store/Planning.h"

namespace vantrel::cli {

namespace {

struct Range {
  std::optional<Date> first;
  std::optional<Date> last;
};

Expected<Range> checkedRange(const std::optional<std::string>& from,
                             const std::optional<std::string>& to) {
  const TimeZone here = TimeZone::defaultTimeZone();
  Range range;
  if (from) {
    const auto moment = momentFromArgument("--from", *from, here);
    if (!moment) return tl::unexpected(moment.error());
    range.first = moment->first;
  }
  if (to) {
    const auto moment = momentFromArgument("--to", *to, here);
    if (!moment) return tl::unexpected(moment.error());
    range.last = moment->last;
  }
  return range;
}

/// The dated plans from `first` to `last`, by date.
Expected<Plans> plansInRange(ManagedObjectContext& context, const Range& range) {
  constexpr double kEarliest = -1e300;
  constexpr std::size_t kFewPlans = 100;
  FetchRequest request;
  request.predicate = Predicate::greaterThanOrEqual("date", range.first.value_or(Date(kEarliest)));
  request.sortDescriptors = {{"date", true}};
  const auto isLater = [&](const auto& plan) { return range.last && plan->date() > range.last; };
  // A predicate has no upper end: some plans first, and more while none of them lies behind it.
  if (range.last) request.fetchLimit = kFewPlans;
  auto plans = fetchPlans(context, request);
  while (plans && range.last && plans->size() == request.fetchLimit && !isLater(plans->back())) {
    request.fetchLimit *= 10;
    plans = fetchPlans(context, request);
  }
  if (plans) std::erase_if(*plans, isLater);
  return plans;
}

constexpr std::size_t kShortestPrefix = 4;
/// One more than ambiguous() lists, so that it knows of more.
constexpr std::size_t kMostFetched = 11;
constexpr std::string_view kUriScheme = "x-coredata://";
constexpr const char* kIdentifierKey = "uniqueIdentifier";

Expected<Plans> plansWithIdentifier(ManagedObjectContext& context, const std::string& identifier) {
  FetchRequest request;
  request.predicate = Predicate::equal(kIdentifierKey, identifier);
  request.fetchLimit = kMostFetched;
  return fetchPlans(context, request);
}

Expected<Plans> plansWithPrefix(ManagedObjectContext& context, const std::string& prefix) {
  FetchRequest request;
  request.predicate = Predicate::greaterThanOrEqual(kIdentifierKey, prefix);
  request.sortDescriptors = {{kIdentifierKey, true}};
  request.fetchLimit = kMostFetched;
  auto plans = fetchPlans(context, request);
  if (plans) {
    std::erase_if(*plans, [&](const auto& plan) {
      return !plan->uniqueIdentifier().value_or("").starts_with(prefix);
    });
  }
  return plans;
}

/// The exact matches, else those that begin so; as typed, else in the upper case of new plans.
Expected<Plans> candidates(ManagedObjectContext& context, const std::string& text) {
  std::vector<std::string> spellings = {text};
  if (asciiUpper(text) != text) spellings.push_back(asciiUpper(text));
  Expected<Plans> plans;
  for (const auto& find : {plansWithIdentifier, plansWithPrefix}) {
    for (const auto& spelling : spellings) {
      plans = find(context, spelling);
      if (!plans || !plans->empty()) return plans;
    }
  }
  return plans;
}

std::vector<std::string> candidateLines(const Plans& plans) {
  std::vector<std::string> lines;
  for (const auto& plan : plans) lines.push_back(candidateText(*plan));
  return lines;
}

}  // namespace

Expected<Plans> fetchPlans(ManagedObjectContext& context, FetchRequest request) {
  request.entityName = Planning::kEntityName;
  return context.executeFetchRequest(request).map([](const auto& objects) {
    Plans plans;
    plans.reserve(objects.size());
    for (const auto& object : objects) {
      if (auto plan = std::dynamic_pointer_cast<Planning>(object)) plans.push_back(std::move(plan));
    }
    return plans;
  });
}

Expected<Plans> allPlans(ManagedObjectContext& context) {
  FetchRequest request;
  request.sortDescriptors = {{"date", true}};
  return fetchPlans(context, request).map([](Plans plans) {
    std::stable_partition(plans.begin(), plans.end(), [](const auto& plan) {
      const auto date = plan->date();
      return date && hasIso8601String(*date);
    });
    return plans;
  });
}

Expected<Plans> plansBetween(const std::optional<std::string>& from,
                             const std::optional<std::string>& to) {
  const auto range = checkedRange(from, to);
  if (!range) return tl::unexpected(range.error());
  const auto context = contextForReading();
  if (!context) return tl::unexpected(context.error());
  return range->first || range->last ? plansInRange(**context, *range) : allPlans(**context);
}

Expected<std::shared_ptr<Planning>> planNamed(ManagedObjectContext& context,
                                              const std::string& text) {
  if (text.starts_with(kUriScheme)) return planWithURI(context, text);
  if (text.empty()) return tl::unexpected(failure(kExitUsage, "PLAN", "must not be empty"));
  const auto plans = candidates(context, text);
  if (!plans) return tl::unexpected(plans.error());
  const bool exact =
      plans->size() == 1 && asciiUpper(*plans->front()->uniqueIdentifier()) == asciiUpper(text);
  if (text.size() < kShortestPrefix && !exact) {
    return tl::unexpected(
        ambiguous(text, "too short to name a plan; give at least four characters of its identifier",
                  candidateLines(*plans)));
  }
  if (plans->empty()) return tl::unexpected(failure(kExitMissing, text, "no such plan"));
  if (plans->size() > 1) {
    return tl::unexpected(
        ambiguous(text, "more than one plan; give more characters of", candidateLines(*plans)));
  }
  return plans->front();
}

}  // namespace vantrel::cli
