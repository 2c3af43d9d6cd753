#pragma once

#include "objectstore/model/ManagedObjectModel.h"
#include "objectstore/sqlite/StoreConnection.h"

namespace vantrel {

/// Whether the file holds nothing at all yet.
bool isEmptyStore(StoreConnection& connection);
/// Makes the whole layout of a new store in an empty file. When another program does so at the same
/// time, its layout stays. Throws what StoreConnection throws.
void createStoreSchema(StoreConnection& connection, const ManagedObjectModel& model);
/// Adds the tables, columns and indexes that the model has and the store does not, and makes the
/// store the model's, all or nothing. Nothing happens when another program has done so meanwhile.
void migrateStoreSchema(StoreConnection& connection, const ManagedObjectModel& model);

}  // namespace vantrel
