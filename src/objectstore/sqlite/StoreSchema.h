#pragma once

#include "objectstore/model/ManagedObjectModel.h"
#include "objectstore/sqlite/StoreConnection.h"

namespace vantrel {

/// Whether the file has no tables.
bool isEmptyStore(StoreConnection& connection);
/// Creates the tables of a new store, in one transaction. Does nothing if another process has
/// created some concurrently. Throws StoreFailure.
void createStoreSchema(StoreConnection& connection, const ManagedObjectModel& model);
/// Adds the model's tables, columns and indexes that the store lacks, and writes the model's
/// metadata, in one transaction. Does nothing if another process has migrated the store
/// concurrently. Throws StoreFailure.
void migrateStoreSchema(StoreConnection& connection, const ManagedObjectModel& model);

}  // namespace vantrel
