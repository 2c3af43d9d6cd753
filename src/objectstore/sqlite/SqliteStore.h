#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/Error.h"
#include "objectstore/model/ChangeSet.h"
#include "objectstore/model/FetchRequest.h"
#include "objectstore/model/ManagedObjectID.h"
#include "objectstore/model/RowSnapshot.h"
#include "objectstore/sqlite/RelationshipStorage.h"
#include "objectstore/sqlite/StoreMetadata.h"
#include "objectstore/sqlite/StoreOptions.h"

namespace SQLite {
class Transaction;
}

namespace vantrel {

/// A row as a fetch hands it over.
struct FetchedRow {
  const EntityDescription* entity = nullptr;  ///< The row's own, where the model has it.
  ManagedObjectID objectID;
  RowSnapshot values;
};
using RowReceiver = std::function<void(FetchedRow&&)>;

/// One store file, opened through a coordinator. All errors are of kObjectStoreErrorDomain.
/// Entities and relationships are those of the coordinator's model. Main thread.
class SqliteStore {
 public:
  /// Opens the file, making it when it is missing; migrates or refuses it as its metadata say.
  static Expected<std::unique_ptr<SqliteStore>> open(
      const std::filesystem::path& url, const StoreOptions& options,
      std::shared_ptr<const ManagedObjectModel> model);
  /// What a file says of itself, read without writing to it.
  static Expected<StoreMetadata> metadataAt(const std::filesystem::path& url);
  /// Makes a store at `to` with all that the one at `from` holds, its identity, pictures and
  /// unknown content included, migrated as opening it would. Either a whole store comes to be or
  /// none, also when the program is killed; the old one is only read. Fails if `to` exists, or if
  /// it would store its pictures in the folder of another store.
  static Expected<void> copy(const std::filesystem::path& from, const std::filesystem::path& to,
                             const StoreOptions& options,
                             const std::shared_ptr<const ManagedObjectModel>& model);
  ~SqliteStore();
  SqliteStore(const SqliteStore&) = delete;
  SqliteStore& operator=(const SqliteStore&) = delete;

  const std::filesystem::path& url() const { return url_; }
  /// As it was when the store was opened (or migrated by that).
  const StoreMetadata& metadata() const { return metadata_; }
  /// Whether another program's model made the store.
  bool isForeign() const { return isForeign_; }

  /// At most `limit` rows (0: all) that the request finds, in its order.
  Expected<void> fetch(const FetchRequest& request, std::size_t limit, const RowReceiver& receive);
  Expected<void> fetchRow(const EntityDescription& entity, std::int64_t key,
                          const RowReceiver& receive);
  /// The keys of the rows that the request finds, in no order.
  Expected<std::vector<std::int64_t>> fetchKeys(const FetchRequest& request);
  Expected<std::size_t> count(const FetchRequest& request);
  /// The bytes of an attribute that is read on demand; absent when the row is gone.
  Expected<Value> readBytes(const EntityDescription& entity, std::size_t slot, std::int64_t key);
  /// The entity that objects named so in this store's URIs are made as; null when there is none.
  Expected<const EntityDescription*> entityForStoredName(std::string_view name);

  /// How the store keeps a to-many relationship.
  Expected<RelationshipStorage> relationshipStorage(const EntityDescription& entity,
                                                    const RelationshipDescription& relationship);
  Expected<void> fetchRelated(const EntityDescription& entity,
                              const RelationshipDescription& relationship, std::int64_t key,
                              const RowReceiver& receive);
  Expected<std::size_t> countRelated(const EntityDescription& entity,
                                     const RelationshipDescription& relationship, std::int64_t key);
  /// For all owners in one query, by key; those without are not in it.
  Expected<std::unordered_map<std::int64_t, std::size_t>> countsOfRelated(
      const EntityDescription& entity, const RelationshipDescription& relationship);

  /// Keeps other processes from writing until the next `save` or `unlock`, so that everything read
  /// in between is still true when it is saved. Waits for other writers as `save` does, then fails
  /// with kLocked. Does nothing if the store is locked already or read only.
  Expected<void> lock();
  /// Ends `lock` without saving.
  void unlock();
  /// Writes all changes in one transaction, or none; gives the keys of the inserted rows in order.
  Expected<std::vector<std::int64_t>> save(const ChangeSet& changes);

 private:
  SqliteStore(std::filesystem::path url, std::shared_ptr<const ManagedObjectModel> model);
  void openFile(const StoreOptions& options);
  void checkMetadata(const StoreOptions& options);
  bool serves(const StoreOptions& options);
  void beginTransaction();
  template <typename Function>
  auto guarded(Function function) -> Expected<decltype(function())>;

  std::filesystem::path url_;
  /// Where a symbolic link at `url_` leads: logs and pictures are beside the file itself.
  std::filesystem::path file_;
  std::shared_ptr<const ManagedObjectModel> model_;
  StoreMetadata metadata_;
  bool isForeign_ = false;
  std::unique_ptr<StoreConnection> connection_;
  std::unique_ptr<StoredEntities> entities_;
  std::unique_ptr<RelationshipStorages> storages_;
  std::unique_ptr<SQLite::Transaction> transaction_;  ///< Between `lock` and `save`.
};

}  // namespace vantrel
