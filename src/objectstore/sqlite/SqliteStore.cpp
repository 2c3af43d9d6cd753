#include "objectstore/sqlite/SqliteStore.h"

#include <algorithm>
#include <cerrno>
#include <charconv>

#include "objectstore/model/AttributeValues.h"
#include "objectstore/sqlite/ExternalData.h"
#include "objectstore/sqlite/StoreCopy.h"
#include "objectstore/sqlite/StoreDraft.h"
#include "objectstore/sqlite/StoreError.h"
#include "objectstore/sqlite/StoreReader.h"
#include "objectstore/sqlite/StoreSchema.h"
#include "objectstore/sqlite/StoreWriter.h"

namespace vantrel {

namespace fs = std::filesystem;

namespace {

constexpr int kKnownStoreVersion = 1;

/// The largest identifier that is an integer.
std::optional<std::int64_t> numericVersion(const std::vector<std::string>& identifiers) {
  std::optional<std::int64_t> largest;
  for (const auto& text : identifiers) {
    std::int64_t number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || stop != text.data() + text.size()) continue;
    largest = std::max(largest.value_or(number), number);
  }
  return largest;
}

/// Checkpoints the WAL so that the main file is complete; closing alone would not report a failed
/// checkpoint.
void checkpointAndClose(std::unique_ptr<StoreConnection> connection) {
  connection->execute("PRAGMA wal_checkpoint(TRUNCATE)");
}

/// Does nothing if another process creates the file first.
void createFile(const fs::path& path, const ManagedObjectModel& model) {
  StoreDraft draft(path);
  auto connection = StoreConnection::open(draft.file(), false);
  createStoreSchema(*connection, model);
  checkpointAndClose(std::move(connection));
  draft.publish();
}

Error errorFromSystem(const std::error_code& code) {
  if (code == std::errc::no_space_on_device || code == std::errc::file_too_large ||
      code.value() == EDQUOT) {
    return storeError(StoreErrorCode::kDiskFull, "the disk is full");
  }
  if (code == std::errc::permission_denied || code == std::errc::operation_not_permitted) {
    return storeError(StoreErrorCode::kPermission,
                      "the store's files cannot be accessed: permission denied");
  }
  return storeError(StoreErrorCode::kInputOutput, "reading or writing the store's files failed");
}

/// The target of a symbolic link; `url` if it is not a link, or a broken one.
fs::path withoutLink(const fs::path& url) {
  std::error_code error;
  if (!fs::is_symlink(url, error)) return url;
  const fs::path file = fs::canonical(url, error);
  return error ? url : file;
}

}  // namespace

template <typename Function>
auto SqliteStore::convertingFailures(Function function) -> Expected<decltype(function())> {
  try {
    if constexpr (std::is_void_v<decltype(function())>) {
      function();
      return {};
    } else {
      return function();
    }
  } catch (StoreFailure& failure) {
    failure.error.userInfo.emplace("path", url_.string());
    return tl::unexpected(std::move(failure.error));
  } catch (const fs::filesystem_error& exception) {
    Error error = errorFromSystem(exception.code());
    error.userInfo.emplace("path", url_.string());
    error.userInfo.emplace("reason", exception.what());
    return tl::unexpected(std::move(error));
  }
}

SqliteStore::SqliteStore(fs::path url, std::shared_ptr<const ManagedObjectModel> model)
    : url_(std::move(url)), file_(withoutLink(url_)), model_(std::move(model)) {}

SqliteStore::~SqliteStore() = default;

Expected<std::unique_ptr<SqliteStore>> SqliteStore::open(
    const fs::path& url, const StoreOptions& options,
    std::shared_ptr<const ManagedObjectModel> model) {
  std::unique_ptr<SqliteStore> store(new SqliteStore(url, std::move(model)));
  const auto opened = store->convertingFailures([&] {
    store->openFile(options);
    store->checkMetadata(options);
  });
  if (!opened) return tl::unexpected(opened.error());
  return store;
}

Expected<StoreMetadata> SqliteStore::metadataAt(const fs::path& url) {
  SqliteStore store(url, nullptr);
  return store.convertingFailures([&] {
    std::error_code error;
    const auto journalSize = fs::file_size(fs::path(store.file_) += "-journal", error);
    // A reader cannot roll back what a killed process left half-written.
    if (!error && journalSize > 0) StoreConnection::open(store.file_, false);
    store.connection_ = StoreConnection::open(store.file_, true);
    return readStoreMetadata(*store.connection_);
  });
}

Expected<void> SqliteStore::copy(const fs::path& from, const fs::path& to,
                                 const StoreOptions& options,
                                 const std::shared_ptr<const ManagedObjectModel>& model) {
  std::error_code error;
  if (fs::exists(fs::symlink_status(to, error))) {
    return tl::unexpected(storeError(StoreErrorCode::kCannotCreate, "there is a file already",
                                     {{"path", to.string()}}));
  }
  SqliteStore old(from, model);
  // Report errors of creating the new store with its path, all others with that of the old one.
  std::unique_ptr<StoreDraft> made;
  auto begun = SqliteStore(to, model).convertingFailures([&] {
    checkOwnSupportFolder(old.file_, to);
    made = std::make_unique<StoreDraft>(to);
  });
  if (!begun) return begun;
  return old.convertingFailures([&] {
    StoreDraft& draft = *made;
    copyStore(old.file_, draft);
    SqliteStore store(draft.file(), model);
    store.connection_ = StoreConnection::open(draft.file(), false);
    if (isEmptyStore(*store.connection_)) {
      failStore(StoreErrorCode::kNotAStore, "the file is not a store");
    }
    store.openFile(options);
    store.checkMetadata(options);
    checkpointAndClose(std::move(store.connection_));
    if (!draft.publish()) {
      failStore(StoreErrorCode::kCannotCreate, "another program has created the new store");
    }
  });
}

void SqliteStore::openFile(const StoreOptions& options) {
  std::error_code error;
  if (!options.readOnly && fs::symlink_status(url_, error).type() == fs::file_type::not_found) {
    createFile(url_, *model_);
  }
  connection_ = StoreConnection::open(file_, options.readOnly);
  // An empty file, as a killed process may leave behind.
  if (!connection_->isReadOnly() && isEmptyStore(*connection_)) {
    createStoreSchema(*connection_, *model_);
  }
  if (!connection_->isReadOnly()) {
    for (const auto& [name, value] : options.sqlitePragmas) {
      std::string pragma = "PRAGMA ";
      pragma.append(name).append(" = ").append(value);
      connection_->execute(pragma);
    }
  }
  metadata_ = readStoreMetadata(*connection_);
}

void SqliteStore::checkMetadata(const StoreOptions& options) {
  const auto makeParts = [&] {
    entities_ = std::make_unique<StoredEntities>(*connection_, *model_, metadata_.uuid);
    storages_ =
        std::make_unique<RelationshipStorages>(*connection_, *entities_, *model_, isForeign_);
  };
  if (metadata_.version > kKnownStoreVersion) {
    failStore(StoreErrorCode::kNewer, "the store was written by a newer version");
  }
  const auto hashes = model_->versionHashes();
  if (!hashes.empty() && metadata_.versionHashes == hashes) return makeParts();

  const auto versions = ManagedObjectModel::allVersionHashes(model_->url());
  const bool isOlder = !metadata_.versionHashes.empty() &&
                       std::any_of(versions.begin(), versions.end(), [&](const auto& version) {
                         return version.second == metadata_.versionHashes;
                       });
  if (isOlder && !connection_->isReadOnly()) {
    if (!options.migratePersistentStoresAutomatically || !options.inferMappingModelAutomatically) {
      failStore(StoreErrorCode::kIncompatible, "the store was written by an older version");
    }
    migrateStoreSchema(*connection_, *model_);
    metadata_ = readStoreMetadata(*connection_);
    return makeParts();
  }
  // A store that cannot be migrated is opened as a foreign store: missing columns read as absent.
  isForeign_ = true;
  makeParts();
  if (isOlder || serves(options)) return;
  const auto theirs = numericVersion(metadata_.versionIdentifiers);
  const auto ours = numericVersion(model_->versionIdentifiers());
  if (theirs && ours && *theirs > *ours) {
    failStore(StoreErrorCode::kNewer, "the store was written by a newer version");
  }
  failStore(StoreErrorCode::kIncompatible, "the store belongs to another program");
}

bool SqliteStore::serves(const StoreOptions& options) {
  if (options.requiredAttributes.empty()) return false;
  for (const auto& [name, keys] : options.requiredAttributes) {
    const auto* entity = model_->entityNamed(name);
    if (!entity) return false;
    for (const auto& key : keys) {
      const auto slot = entity->slotOfAttribute(key);
      if (!slot || entities_->stored(*entity).columns[*slot].empty()) return false;
    }
  }
  return true;
}

Expected<void> SqliteStore::fetch(const FetchRequest& request, std::size_t limit,
                                  const RowReceiver& receive) {
  return convertingFailures([&] {
    // The entity numbers and the rows are those of the same instant. `receive` may fetch as well.
    std::optional<Transaction> transaction;
    if (!connection_->isInTransaction()) {
      transaction.emplace(*connection_, Transaction::Kind::kRead);
    }
    StoreReader reader(*connection_, *entities_);
    auto query = reader.queryForRequest(request, *model_->entityNamed(request.entityName));
    query.limit = limit;
    reader.rows(query, receive);
  });
}

Expected<void> SqliteStore::fetchRow(const EntityDescription& entity, std::int64_t key,
                                     const RowReceiver& receive) {
  return convertingFailures([&] {
    StoreReader reader(*connection_, *entities_);
    reader.rows({.entity = &entity, .condition = "Z_PK = ?", .values = {key}}, receive);
  });
}

Expected<std::vector<std::int64_t>> SqliteStore::fetchKeys(const FetchRequest& request) {
  return convertingFailures([&] {
    StoreReader reader(*connection_, *entities_);
    return reader.keys(reader.queryForRequest(request, *model_->entityNamed(request.entityName)));
  });
}

Expected<std::size_t> SqliteStore::count(const FetchRequest& request) {
  return convertingFailures([&] {
    StoreReader reader(*connection_, *entities_);
    return reader.count(reader.queryForRequest(request, *model_->entityNamed(request.entityName)));
  });
}

Expected<Value> SqliteStore::readBytes(const EntityDescription& entity, std::size_t slot,
                                       std::int64_t key) {
  return convertingFailures(
      [&] { return StoreReader(*connection_, *entities_).bytes(entity, slot, key, file_); });
}

Expected<const EntityDescription*> SqliteStore::entityForStoredName(std::string_view name) {
  return convertingFailures([&] { return entities_->modelEntity(name); });
}

Expected<RelationshipStorage> SqliteStore::relationshipStorage(
    const EntityDescription& entity, const RelationshipDescription& relationship) {
  return convertingFailures([&] { return storages_->storage(entity, relationship); });
}

Expected<void> SqliteStore::fetchRelated(const EntityDescription& entity,
                                         const RelationshipDescription& relationship,
                                         std::int64_t key, const RowReceiver& receive) {
  return convertingFailures([&] {
    const auto& storage = storages_->storage(entity, relationship);
    const auto* destination = relationship.destinationEntity;
    if (!storage.hasPairs() || !storage.isDestinationInModel || !destination) return;
    const bool isInOtherTable = storage.destinationColumn == "Z_PK";
    const std::string condition = isInOtherTable
                                      ? sqlName(storage.ownerColumn) + " = ?"
                                      : "Z_PK IN (SELECT " + sqlName(storage.destinationColumn) +
                                            " FROM " + sqlName(storage.table) + " WHERE " +
                                            sqlName(storage.ownerColumn) + " = ?)";
    StoreReader reader(*connection_, *entities_);
    reader.rows({.entity = destination, .condition = condition, .values = {key}}, receive);
  });
}

Expected<std::size_t> SqliteStore::countRelated(const EntityDescription& entity,
                                                const RelationshipDescription& relationship,
                                                std::int64_t key) {
  return convertingFailures([&]() -> std::size_t {
    const auto& storage = storages_->storage(entity, relationship);
    if (!storage.hasPairs()) return 0;
    auto query = connection_->statement("SELECT count(*) FROM " + sqlName(storage.table) +
                                        " WHERE " + sqlName(storage.ownerColumn) + " = ? AND " +
                                        storage.pairCondition());
    return query.bind(key).next() ? static_cast<std::size_t>(query.integer(0)) : 0;
  });
}

Expected<std::unordered_map<std::int64_t, std::size_t>> SqliteStore::countsOfRelated(
    const EntityDescription& entity, const RelationshipDescription& relationship) {
  return convertingFailures([&] {
    std::unordered_map<std::int64_t, std::size_t> counts;
    const auto& storage = storages_->storage(entity, relationship);
    if (!storage.hasPairs()) return counts;
    const std::string owner = sqlName(storage.ownerColumn);
    auto query =
        connection_->statement("SELECT " + owner + ", count(*) FROM " + sqlName(storage.table) +
                               " WHERE " + storage.pairCondition() + " GROUP BY " + owner);
    while (query.next()) counts[query.integer(0)] = static_cast<std::size_t>(query.integer(1));
    return counts;
  });
}

Expected<void> SqliteStore::lock() {
  return convertingFailures([&] {
    if (!transaction_ && !connection_->isReadOnly()) transaction_.emplace(*connection_);
  });
}

Expected<void> SqliteStore::freeze() {
  return convertingFailures([&] {
    if (!transaction_) transaction_.emplace(*connection_, Transaction::Kind::kRead);
  });
}

void SqliteStore::unlock() {
  transaction_.reset();
}

Expected<std::vector<std::int64_t>> SqliteStore::save(const ChangeSet& changes) {
  auto keys = convertingFailures([&] {
    if (connection_->isReadOnly()) {
      failStore(StoreErrorCode::kPermission, "the store cannot be written: permission denied");
    }
    if (!transaction_) transaction_.emplace(*connection_);
    StoreWriter writer(*connection_, *entities_, *storages_, *model_);
    auto written = writer.write(changes);
    transaction_->commit();
    connection_->noteWritten();
    for (const auto& name : writer.releasedFiles()) {
      std::error_code ignored;
      fs::remove(externalFile(file_, name), ignored);
    }
    return written;
  });
  transaction_.reset();
  // Entity numbers added while writing may have been rolled back.
  if (!keys) entities_->forget();
  return keys;
}

}  // namespace vantrel
