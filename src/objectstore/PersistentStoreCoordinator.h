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

/// Stands between contexts and the one store they share. Main thread.
class PersistentStoreCoordinator {
 public:
  explicit PersistentStoreCoordinator(std::shared_ptr<ManagedObjectModel> model);
  ~PersistentStoreCoordinator();

  const std::shared_ptr<ManagedObjectModel>& managedObjectModel() const { return model_; }
  /// Opens the SQLite store at the path, making it when it is missing (unless read only). When that
  /// fails nothing is added, and the error (see StoreErrorCode) is what later fetches fail with.
  Expected<SqliteStore*> addPersistentStore(const std::optional<std::filesystem::path>& url,
                                            const StoreOptions& options);
  /// The store; null when none could be added.
  SqliteStore* persistentStore() const { return store_.get(); }
  /// Why there is no store; only while there is none.
  const Error& storeFailure() const { return failure_; }
  /// Keeps the reason for not even trying to add a store.
  void setStoreFailure(Error failure) { failure_ = std::move(failure); }

  /// Reads a store's metadata without writing to it.
  static Expected<StoreMetadata> metadataForPersistentStore(const std::filesystem::path& url);

 private:
  std::shared_ptr<ManagedObjectModel> model_;
  std::unique_ptr<SqliteStore> store_;
  Error failure_;
};

}  // namespace vantrel
