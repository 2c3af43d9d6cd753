#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "base/Error.h"
#include "objectstore/model/ManagedObjectModel.h"
#include "objectstore/sqlite/StoreMetadata.h"
#include "objectstore/sqlite/StoreOptions.h"

namespace vantrel {

class SqliteStore;

/// Opens the one store that its contexts share. Main thread only.
class PersistentStoreCoordinator {
 public:
  explicit PersistentStoreCoordinator(std::shared_ptr<ManagedObjectModel> model);
  ~PersistentStoreCoordinator();

  const std::shared_ptr<ManagedObjectModel>& managedObjectModel() const { return model_; }
  /// Opens the store at `url`, and creates it if it is missing unless `options.readOnly`. Fails
  /// (see StoreErrorCode) if `url` is `nullopt` or a store is open already; later fetches then fail
  /// with the same error. The coordinator owns the store.
  Expected<SqliteStore*> addPersistentStore(const std::optional<std::filesystem::path>& url,
                                            const StoreOptions& options);
  /// Null if no store has been added.
  SqliteStore* persistentStore() const { return store_.get(); }
  /// Why there is no store. Meaningless once there is one.
  const Error& storeFailure() const { return failure_; }
  /// Sets the reason for not adding a store.
  void setStoreFailure(Error failure) { failure_ = std::move(failure); }

  /// Reads a store's metadata. Writes to the file only to roll back what a killed process left
  /// half-written.
  static Expected<StoreMetadata> metadataForPersistentStore(const std::filesystem::path& url);

 private:
  std::shared_ptr<ManagedObjectModel> model_;
  std::unique_ptr<SqliteStore> store_;
  Error failure_;
};

}  // namespace vantrel
