#include "today/sheet/PlanOpening.h"

#include <algorithm>
#include <utility>

#include "common/ExitCode.h"
#include "common/LinkedPlan.h"
#include "common/StoreAccess.h"
#include "store/Database.h"
#include "today/InterfaceText.h"
#include "today/StoreProblem.h"

namespace vantrel {

Expected<std::shared_ptr<Planning>> planOfLink(const std::string& link) {
  const auto uri = uriFromLink(link);
  if (!uri) {
    return tl::unexpected(
        failure(kExitBadData, "the link",
                "leads to no plan; those look like vantrel://plan?id=x-coredata:%2F%2F..."));
  }
  if (auto store = existingStore(); !store) return tl::unexpected(store.error());
  if (auto problem = storeProblem()) return tl::unexpected(std::move(*problem));
  auto plan = planWithURI(*Database::sharedInstance().managedObjectContext(), *uri);
  if (!plan && exitCodeForError(plan.error()) == kExitMissing) {
    return tl::unexpected(
        failure(kExitMissing, "the link", "its plan is gone, or belongs to another store"));
  }
  return plan;
}

std::shared_ptr<Planning> neighbourOfPlan(const Planning& plan, Direction direction) {
  const auto date = plan.date();
  auto* context = plan.managedObjectContext();
  if (!date || !context) return nullptr;
  const bool isNext = direction == Direction::kNext;
  const auto plans = [&](Predicate predicate, std::size_t limit) {
    return context
        ->executeFetchRequest({.entityName = std::string(Planning::kEntityName),
                               .predicate = std::move(predicate),
                               .sortDescriptors = {{"date", isNext}},
                               .fetchLimit = limit})
        .value_or(ManagedObjectContext::Objects());
  };
  const auto planning = [](std::shared_ptr<ManagedObject> object) {
    return std::dynamic_pointer_cast<Planning>(std::move(object));
  };
  // Several plans may have the same date.
  const auto sameDate = plans(Predicate::equal("date", *date), 0);
  const auto self = std::find_if(sameDate.begin(), sameDate.end(),
                                 [&](const auto& other) { return other.get() == &plan; });
  if (self == sameDate.end()) return nullptr;
  if (isNext && self + 1 != sameDate.end()) return planning(*(self + 1));
  if (!isNext && self != sameDate.begin()) return planning(*(self - 1));
  if (isNext) {
    const auto following = plans(Predicate::greaterThanOrEqual("date", *date), sameDate.size() + 1);
    return following.size() > sameDate.size() ? planning(following.back()) : nullptr;
  }
  const auto preceding = plans(Predicate::lessThan("date", *date), 1);
  if (preceding.empty()) return nullptr;
  const auto before = planning(preceding.front());
  return planning(plans(Predicate::equal("date", *before->date()), 0).back());
}

std::string messageForLinkError(const Error& error) {
  if (error.domain != failure(kExitBadData, {}, {}).domain) {
    return error.localizedDescription;
  }
  return localized(error.code == kExitBadData ? "today_link_invalid" : "today_link_plan_missing");
}

}  // namespace vantrel
