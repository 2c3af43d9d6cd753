#include "today/sheet/PlanOpening.h"

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

std::string messageForLinkError(const Error& error) {
  if (error.domain != failure(kExitBadData, {}, {}).domain) {
    return error.localizedDescription;
  }
  return localized(error.code == kExitBadData ? "today_link_invalid" : "today_link_plan_missing");
}

}  // namespace vantrel
