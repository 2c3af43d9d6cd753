#include "objectstore/sqlite/SqliteStore.h"

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>
#include <sqlite3.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <new>

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

/// The largest of identifiers that are whole numbers.
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

/// The file must be whole without its log; closing alone would not tell that it is not.
void closeWhole(std::unique_ptr<StoreConnection> connection) {
  connection->database().exec("PRAGMA wal_checkpoint(TRUNCATE)");
}

/// Gives way to a file that another program puts there meanwhile.
void createFile(const fs::path& path, const ManagedObjectModel& model) {
  StoreDraft draft(path);
  auto connection = StoreConnection::open(draft.file(), false);
  createStoreSchema(*connection, model);
  closeWhole(std::move(connection));
  draft.publish();
}

Error errorFromSystem(const std::error_code& code) {
  if (code == std::errc::no_space_on_device || code == std::errc::file_too_large ||
      code.value() == EDQUOT) {
    return storeError(StoreErrorCode::kDiskFull, "the disk is full");
  }
  if (code == std::errc::permission_denied || code == std::errc::operation_not_permitted) {
    return storeError(StoreErrorCode::kPermission, "the store's files may not be used");
  }
  return storeError(StoreErrorCode::kInputOutput, "reading or writing the store's files failed");
}

/// The file that a symbolic link leads to; `url` itself if it is none, or leads nowhere.
fs::path withoutLink(const fs::path& url) {
  std::error_code error;
  if (!fs::is_symlink(url, error)) return url;
  const fs::path file = fs::canonical(url, error);
  return error ? url : file;
}

/// As a failed `new` does.
[[noreturn]] void failOutOfMemory() {
  if (const auto handler = std::get_new_handler()) handler();
  throw std::bad_alloc();
}

}  // namespace

template <typename Function>
auto SqliteStore::guarded(Function function) -> Expected<decltype(function())> {
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
  } catch (const SQLite::Exception& exception) {
    const int code = std::max(exception.getErrorCode(), exception.getExtendedErrorCode());
    if ((code & 0xff) == SQLITE_NOMEM) failOutOfMemory();
    const int systemError =
        connection_ ? sqlite3_system_errno(connection_->database().getHandle()) : errno;
    Error error = errorFromSqlite(code, systemError);
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
  const auto opened = store->guarded([&] {
    store->openFile(options);
    store->checkMetadata(options);
  });
  if (!opened) return tl::unexpected(opened.error());
  return store;
}

Expected<StoreMetadata> SqliteStore::metadataAt(const fs::path& url) {
  SqliteStore store(url, nullptr);
  return store.guarded([&] {
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
  // Errors of making it are about the new store, all others about the old one.
  std::unique_ptr<StoreDraft> made;
  auto begun = SqliteStore(to, model).guarded([&] {
    checkOwnSupportFolder(old.file_, to);
    made = std::make_unique<StoreDraft>(to);
  });
  if (!begun) return begun;
  return old.guarded([&] {
    StoreDraft& draft = *made;
    copyStore(old.file_, draft);
    SqliteStore store(draft.file(), model);
    store.connection_ = StoreConnection::open(draft.file(), false);
    if (isEmptyStore(*store.connection_)) {
      failStore(StoreErrorCode::kNotAStore, "the file is not a store");
    }
    store.openFile(options);
    store.checkMetadata(options);
    closeWhole(std::move(store.connection_));
    if (!draft.publish()) {
      failStore(StoreErrorCode::kCannotCreate, "another program has made the new store meanwhile");
    }
  });
}

void SqliteStore::openFile(const StoreOptions& options) {
  std::error_code error;
  if (!options.readOnly && fs::symlink_status(url_, error).type() == fs::file_type::not_found) {
    createFile(url_, *model_);
  }
  connection_ = StoreConnection::open(file_, options.readOnly);
  // A file without content, as a program that was stopped while it made one may leave.
  if (!connection_->isReadOnly() && isEmptyStore(*connection_)) {
    createStoreSchema(*connection_, *model_);
  }
  if (!connection_->isReadOnly()) connection_->setPragmas(options.sqlitePragmas);
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
      failStore(StoreErrorCode::kIncompatible, "the store is of an older version");
    }
    migrateStoreSchema(*connection_, *model_);
    metadata_ = readStoreMetadata(*connection_);
    return makeParts();
  }
  // What cannot be migrated is read like a stranger's: columns that are missing read absent.
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
      const auto slot = slotOfAttribute(*entity, key);
      if (!slot || entities_->stored(*entity).columns[*slot].empty()) return false;
    }
  }
  return true;
}

Expected<void> SqliteStore::fetch(const FetchRequest& request, std::size_t limit,
                                  const RowReceiver& receive) {
  return guarded([&] {
    StoreReader reader(*connection_, *entities_);
    auto query = reader.queryForRequest(request, *model_->entityNamed(request.entityName));
    query.limit = limit;
    reader.rows(query, receive);
  });
}

Expected<void> SqliteStore::fetchRow(const EntityDescription& entity, std::int64_t key,
                                     const RowReceiver& receive) {
  return guarded([&] {
    StoreReader reader(*connection_, *entities_);
    reader.rows({.entity = &entity, .condition = "Z_PK = ?", .values = {key}}, receive);
  });
}

Expected<std::vector<std::int64_t>> SqliteStore::fetchKeys(const FetchRequest& request) {
  return guarded([&] {
    StoreReader reader(*connection_, *entities_);
    return reader.keys(reader.queryForRequest(request, *model_->entityNamed(request.entityName)));
  });
}

Expected<std::size_t> SqliteStore::count(const FetchRequest& request) {
  return guarded([&] {
    StoreReader reader(*connection_, *entities_);
    return reader.count(reader.queryForRequest(request, *model_->entityNamed(request.entityName)));
  });
}

Expected<Value> SqliteStore::readBytes(const EntityDescription& entity, std::size_t slot,
                                       std::int64_t key) {
  return guarded(
      [&] { return StoreReader(*connection_, *entities_).bytes(entity, slot, key, file_); });
}

Expected<const EntityDescription*> SqliteStore::entityForStoredName(std::string_view name) {
  return guarded([&] { return entities_->modelEntity(name); });
}

Expected<RelationshipStorage> SqliteStore::relationshipStorage(
    const EntityDescription& entity, const RelationshipDescription& relationship) {
  return guarded([&] { return storages_->storage(entity, relationship); });
}

Expected<void> SqliteStore::fetchRelated(const EntityDescription& entity,
                                         const RelationshipDescription& relationship,
                                         std::int64_t key, const RowReceiver& receive) {
  return guarded([&] {
    const auto& storage = storages_->storage(entity, relationship);
    const auto* destination = model_->entityNamed(relationship.destinationEntityName);
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
  return guarded([&]() -> std::size_t {
    const auto& storage = storages_->storage(entity, relationship);
    if (!storage.hasPairs()) return 0;
    const auto query = connection_->statement("SELECT count(" + sqlName(storage.destinationColumn) +
                                              ") FROM " + sqlName(storage.table) + " WHERE " +
                                              sqlName(storage.ownerColumn) + " = ?");
    query->bind(1, key);
    return query->executeStep() ? static_cast<std::size_t>(query->getColumn(0).getInt64()) : 0;
  });
}

Expected<std::unordered_map<std::int64_t, std::size_t>> SqliteStore::countsOfRelated(
    const EntityDescription& entity, const RelationshipDescription& relationship) {
  return guarded([&] {
    std::unordered_map<std::int64_t, std::size_t> counts;
    const auto& storage = storages_->storage(entity, relationship);
    if (!storage.hasPairs()) return counts;
    const std::string owner = sqlName(storage.ownerColumn);
    const std::string destination = sqlName(storage.destinationColumn);
    const auto query = connection_->statement(
        "SELECT " + owner + ", count(*) FROM " + sqlName(storage.table) + " WHERE " + owner +
        " IS NOT NULL AND " + destination + " IS NOT NULL GROUP BY " + owner);
    while (query->executeStep()) {
      counts[query->getColumn(0).getInt64()] =
          static_cast<std::size_t>(query->getColumn(1).getInt64());
    }
    return counts;
  });
}

void SqliteStore::beginTransaction() {
  transaction_ = std::make_unique<SQLite::Transaction>(connection_->database(),
                                                       SQLite::TransactionBehavior::IMMEDIATE);
}

Expected<void> SqliteStore::lock() {
  return guarded([&] {
    if (!transaction_ && !connection_->isReadOnly()) beginTransaction();
  });
}

void SqliteStore::unlock() {
  transaction_.reset();
}

Expected<std::vector<std::int64_t>> SqliteStore::save(const ChangeSet& changes) {
  auto keys = guarded([&] {
    if (connection_->isReadOnly()) {
      failStore(StoreErrorCode::kPermission, "the store may not be written");
    }
    if (!transaction_) beginTransaction();
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
  // What was looked up while writing may have been taken back.
  if (!keys) entities_->forget();
  return keys;
}

}  // namespace vantrel
