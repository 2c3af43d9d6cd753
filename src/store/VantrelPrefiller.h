#pragma once

#include "objectstore/ManagedObjectContext.h"
#include "store/Planning.h"

namespace vantrel {

/// Turns the text keys of plans that a store is delivered with into the user's language, by the
/// table "Plannings" of the main bundle. Text that is no key stays; an absent one becomes empty.
/// Main thread.
class VantrelPrefiller {
 public:
  VantrelPrefiller() = delete;

  /// All that is delivered as keys, which is the plans. (The name says model; it is a context.)
  static void translateDataInManagedObjectModel(ManagedObjectContext& context);
  /// Every plan of the store; saves when that changed anything. Plans that cannot be read stay as
  /// they are; a save that fails is logged, and its changes stay in the context.
  static void translatePlanningsInManagedObjectModel(ManagedObjectContext& context);
  /// Name and notes of one plan, unsaved.
  static void translatePlanning(Planning& plan);
};

}  // namespace vantrel
