#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "base/Error.h"
#include "objectstore/ManagedObjectModel.h"

namespace vantrel {

class SqliteStore;

/// How a store is added.
struct StoreOptions {
  bool readOnly = false;
  /// Migrate a store written with an older version of the model's bundle.
  bool migratePersistentStoresAutomatically = false;
  bool inferMappingModelAutomatically = false;
  /// SQLite pragmas, set when the store is opened ("journal_mode" = "WAL").
  std::map<std::string, std::string> sqlitePragmas;
};

/// What a store says of itself in Z_METADATA.
struct StoreMetadata {
  std::string uuid;
  int version = 0;
  ManagedObjectModel::VersionHashes versionHashes;
  std::vector<std::string> versionIdentifiers;
};

/// Stands between contexts and the one store they share. Main thread.
class PersistentStoreCoordinator {
 public:
  explicit PersistentStoreCoordinator(std::shared_ptr<ManagedObjectModel> model);
  ~PersistentStoreCoordinator();

  const std::shared_ptr<ManagedObjectModel>& managedObjectModel() const { return model_; }
  /// Opens the SQLite store at the path, making it when it is missing (unless read only). Nothing
  /// is added when it fails: see SqliteStore for the errors.
  Expected<SqliteStore*> addPersistentStore(const std::optional<std::filesystem::path>& url,
                                            const StoreOptions& options);
  /// The store; null when none could be added.
  SqliteStore* persistentStore() const { return store_.get(); }

  /// Reads a store's metadata without writing to it.
  static Expected<StoreMetadata> metadataForPersistentStore(const std::filesystem::path& url);

 private:
  std::shared_ptr<ManagedObjectModel> model_;
  std::unique_ptr<SqliteStore> store_;
};

}  // namespace vantrel
