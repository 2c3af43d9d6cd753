#pragma once

#include <string>
#include <vector>

#include "objectstore/model/ManagedObjectModel.h"

namespace vantrel {

class StoreConnection;

/// The content of Z_METADATA.
struct StoreMetadata {
  std::string uuid;
  int version = 0;
  /// Empty if the store has no valid hashes: it then fits no model.
  ManagedObjectModel::VersionHashes versionHashes;
  std::vector<std::string> versionIdentifiers;
};

/// Throws StoreFailure, also if the file is not a store or its metadata are damaged.
StoreMetadata readStoreMetadata(StoreConnection& connection);
/// Inserts the row of a new store, with a new UUID.
void insertStoreMetadata(StoreConnection& connection, const ManagedObjectModel& model);
/// Replaces the keys that depend on the model. The UUID and other keys are kept.
void updateStoreMetadata(StoreConnection& connection, const ManagedObjectModel& model);

}  // namespace vantrel
