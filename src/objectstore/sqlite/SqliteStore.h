#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
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

namespace vantrel {

/// A row that a fetch passes to its receiver.
struct FetchedRow {
  /// The row's entity or, if the model lacks it, its nearest ancestor in the model.
  const EntityDescription* entity = nullptr;
  ManagedObjectID objectID;
  RowSnapshot values;
};
/// Returns false to stop the fetch.
using RowReceiver = std::function<bool(FetchedRow&&)>;

/// One store file, opened by a coordinator. All errors have kObjectStoreErrorDomain. Entities and
/// relationships passed in belong to the coordinator's model. Main thread only.
class SqliteStore {
 public:
  /// Opens the file, and creates it if it is missing unless `options.readOnly`. Migrates an older
  /// store if the options allow it; fails with kNewer, kIncompatible or kNotAStore for others.
  static Expected<std::unique_ptr<SqliteStore>> open(
      const std::filesystem::path& url, const StoreOptions& options,
      std::shared_ptr<const ManagedObjectModel> model);
  /// Reads a store's metadata. Writes to the file only to roll back what a killed process left
  /// half-written.
  static Expected<StoreMetadata> metadataAt(const std::filesystem::path& url);
  /// Copies a store with its identity, pictures and unknown content, migrated like `open` does.
  /// Creates a complete store or none, also if the process is killed; does not write to the old
  /// one. Fails if `to` exists, or if it would keep its pictures in the folder of another store.
  static Expected<void> copy(const std::filesystem::path& from, const std::filesystem::path& to,
                             const StoreOptions& options,
                             const std::shared_ptr<const ManagedObjectModel>& model);
  ~SqliteStore();
  SqliteStore(const SqliteStore&) = delete;
  SqliteStore& operator=(const SqliteStore&) = delete;

  const std::filesystem::path& url() const { return url_; }
  /// As read when the store was opened, after a migration.
  const StoreMetadata& metadata() const { return metadata_; }
  /// Whether the store has the model of another program.
  bool isForeign() const { return isForeign_; }

  /// Passes the rows that match the request to `receive`, in its order; at most `limit` unless that
  /// is 0. `receive` must not write to the store.
  Expected<void> fetch(const FetchRequest& request, std::size_t limit, const RowReceiver& receive);
  Expected<void> fetchRow(const EntityDescription& entity, std::int64_t key,
                          const RowReceiver& receive);
  /// The keys of the rows that match the request, unordered.
  Expected<std::vector<std::int64_t>> fetchKeys(const FetchRequest& request);
  Expected<std::size_t> count(const FetchRequest& request);
  /// The bytes of an attribute that is read on demand; absent if the row no longer exists.
  Expected<Value> readBytes(const EntityDescription& entity, std::size_t slot, std::int64_t key);
  /// The model's entity for an entity name in a URI of this store; null if there is none.
  Expected<const EntityDescription*> entityForStoredName(std::string_view name);

  Expected<RelationshipStorage> relationshipStorage(const EntityDescription& entity,
                                                    const RelationshipDescription& relationship);
  Expected<void> fetchRelated(const EntityDescription& entity,
                              const RelationshipDescription& relationship, std::int64_t key,
                              const RowReceiver& receive);
  Expected<std::size_t> countRelated(const EntityDescription& entity,
                                     const RelationshipDescription& relationship, std::int64_t key);
  /// The counts of all owners, by their key, with one query. Owners without related objects are
  /// left out.
  Expected<std::unordered_map<std::int64_t, std::size_t>> countsOfRelated(
      const EntityDescription& entity, const RelationshipDescription& relationship);

  /// Prevents other processes from writing until the next `save` or `unlock`, so that everything
  /// read in between still holds when it is saved. Waits 5 s for another writer, then fails with
  /// kLocked. Does nothing if the store is already locked or read only.
  Expected<void> lock();
  /// Lets all reads until `unlock` see the store as it is now. Does not keep others from writing to
  /// a store with a write-ahead log.
  Expected<void> freeze();
  /// Ends `lock` or `freeze` without saving.
  void unlock();
  /// Writes all changes in one transaction, or none. Returns the keys of the inserted rows in
  /// order.
  Expected<std::vector<std::int64_t>> save(const ChangeSet& changes);

 private:
  SqliteStore(std::filesystem::path url, std::shared_ptr<const ManagedObjectModel> model);
  void openFile(const StoreOptions& options);
  void checkMetadata(const StoreOptions& options);
  bool serves(const StoreOptions& options);
  /// Calls `function` and converts what it throws to an Error.
  template <typename Function>
  auto convertingFailures(Function function) -> Expected<decltype(function())>;

  std::filesystem::path url_;
  /// The target if `url_` is a symbolic link: logs and pictures are beside it.
  std::filesystem::path file_;
  std::shared_ptr<const ManagedObjectModel> model_;
  StoreMetadata metadata_;
  bool isForeign_ = false;
  std::unique_ptr<StoreConnection> connection_;
  std::unique_ptr<StoredEntities> entities_;
  std::unique_ptr<RelationshipStorages> storages_;
  std::optional<Transaction> transaction_;  ///< Between `lock` and `save`.
};

}  // namespace vantrel
