#include "support/PlanStore.h"

#include <cstdlib>

#include "base/Log.h"
#include "store/Database.h"

namespace vantrel::test {

ManagedObjectContext& PlanStore::context() {
  return *Database::sharedInstance().managedObjectContext();
}

std::shared_ptr<Planning> PlanStore::add(const std::optional<std::string>& name,
                                         const std::optional<Date>& date,
                                         const std::optional<std::string>& timezone) {
  auto plan = std::dynamic_pointer_cast<Planning>(context().insertNewObject("Planning"));
  if (!plan) std::abort();
  plan->setName(name);
  plan->setDate(date);
  plan->setTimezone(timezone);
  return plan;
}

void PlanStore::save() {
  if (const auto saved = context().save(); !saved) {
    logLine(saved.error().localizedDescription);
    std::abort();
  }
}

}  // namespace vantrel::test
