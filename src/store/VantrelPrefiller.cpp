#include "store/VantrelPrefiller.h"

#include <optional>
#include <string>

#include "base/Log.h"
#include "base/StringFormat.h"
#include "platform/system/Bundle.h"
#include "store/Planning.h"

namespace vantrel {

namespace {

std::string translated(const std::optional<std::string>& key) {
  return Bundle::mainBundle().localizedString(key, "", "Plannings");
}

}  // namespace

void VantrelPrefiller::translateDataInManagedObjectModel(ManagedObjectContext& context) {
  translatePlanningsInManagedObjectModel(context);
}

void VantrelPrefiller::translatePlanningsInManagedObjectModel(ManagedObjectContext& context) {
  const auto objects = context.executeFetchRequest({.entityName = Planning::kEntityName});
  if (!objects) return;
  for (const auto& object : *objects) {
    if (const auto plan = std::dynamic_pointer_cast<Planning>(object)) translatePlanning(*plan);
  }
  if (!context.hasChanges()) return;
  if (const auto saved = context.save(); !saved) {
    logLine(
        stringWithFormat("Error translating plannings (%@)", {saved.error().localizedDescription}));
  }
}

void VantrelPrefiller::translatePlanning(Planning& plan) {
  plan.setName(translated(plan.name()));
  plan.setNotes(translated(plan.notes()));
}

}  // namespace vantrel
