#pragma once

#include "objectstore/ManagedObjectContext.h"
#include "store/Planning.h"

namespace vantrel {

/// Translates the plans of a pre-filled store, whose names and notes are keys of the string table
/// "Plannings" of the main bundle. Text that is not a key does not change; absent text becomes
/// empty. Main thread only.
class VantrelPrefiller {
 public:
  VantrelPrefiller() = delete;

  /// Calls translatePlanningsInManagedObjectModel(). Despite their names, both take a context.
  static void translateDataInManagedObjectModel(ManagedObjectContext& context);
  /// Translates all plans and saves if any changed. Does nothing if the fetch fails. If the save
  /// fails, logs the error and keeps the changes in the context.
  static void translatePlanningsInManagedObjectModel(ManagedObjectContext& context);
  /// Translates the name and notes of one plan; does not save.
  static void translatePlanning(Planning& plan);
};

}  // namespace vantrel
