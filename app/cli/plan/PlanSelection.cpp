#include "cli/plan/PlanSelection.h"

#include <algorithm>

#include "cli/Arguments.h"
#include "cli/StoreAccess.h"

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
    if (!moment) return tl::make_unexpected(moment.error());
    range.first = moment->first;
  }
  if (to) {
    const auto moment = momentFromArgument("--to", *to, here);
    if (!moment) return tl::make_unexpected(moment.error());
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

}  // namespace

Expected<Plans> fetchPlans(ManagedObjectContext& context, FetchRequest request) {
  request.entityName = "Planning";
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
    std::stable_partition(plans.begin(), plans.end(),
                          [](const auto& plan) { return plan->date().has_value(); });
    return plans;
  });
}

Expected<Plans> plansBetween(const std::optional<std::string>& from,
                             const std::optional<std::string>& to) {
  const auto range = checkedRange(from, to);
  if (!range) return tl::make_unexpected(range.error());
  const auto context = contextForReading();
  if (!context) return tl::make_unexpected(context.error());
  return range->first || range->last ? plansInRange(**context, *range) : allPlans(**context);
}

}  // namespace vantrel::cli
