#pragma once

#include <string>
#include <vector>

#include "objectstore/model/ManagedObjectModel.h"

namespace vantrel {

class StoreConnection;

/// What a store says of itself in Z_METADATA.
struct StoreMetadata {
  std::string uuid;
  int version = 0;
  /// Empty when the store does not tell: it then fits no model.
  ManagedObjectModel::VersionHashes versionHashes;
  std::vector<std::string> versionIdentifiers;
};

/// Throws StoreFailure for a file that is no store or whose metadata are damaged, and what
/// StoreConnection throws.
StoreMetadata readStoreMetadata(StoreConnection& connection);
/// The row of a new store, with a UUID of its own.
void insertStoreMetadata(StoreConnection& connection, const ManagedObjectModel& model);
/// After a migration: the store is the model's from now on. Its UUID, and all that it says beside,
/// stays.
void updateStoreMetadata(StoreConnection& connection, const ManagedObjectModel& model);

}  // namespace vantrel
