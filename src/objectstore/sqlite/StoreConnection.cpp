#include "objectstore/sqlite/StoreConnection.h"

#include <sqlite3.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <string_view>
#include <utility>

#include "base/FileDescriptor.h"
#include "base/PercentEncoding.h"
#include "objectstore/sqlite/StoreError.h"

namespace vantrel {

namespace fs = std::filesystem;

namespace {

constexpr int kLockWaitMilliseconds = 5000;

fs::path beside(const fs::path& path, const char* suffix) {
  fs::path result = path;
  return result += suffix;
}

bool isNonEmptyFile(const fs::path& path) {
  std::error_code error;
  const auto size = fs::file_size(path, error);
  return !error && size > 0;
}

/// Whether files of a log or journal are beside the file: another process may have it open.
bool isUsedByOthers(const fs::path& path) {
  std::error_code ignored;
  return isNonEmptyFile(beside(path, "-wal")) || fs::exists(beside(path, "-shm"), ignored) ||
         fs::exists(beside(path, "-journal"), ignored);
}

/// Whether the file's header is that of a database.
bool hasDatabaseHeader(const fs::path& path) {
  constexpr std::string_view kMagic{"SQLite format 3\0", 16};
  std::array<char, kMagic.size()> header{};
  const auto file = openRegularFile(path.c_str());
  return file && ::read(file.number(), header.data(), header.size()) == ssize_t{kMagic.size()} &&
         std::string_view(header.data(), header.size()) == kMagic;
}

/// A URI for a file that no process changes, for which SQLite creates no files beside it.
std::string immutableName(const fs::path& path) {
  constexpr std::string_view kAllowed =
      "-./0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~";
  return "file:" + percentEncoded(path.string(), kAllowed) + "?mode=ro&immutable=1";
}

void checkFile(const fs::path& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  switch (status.type()) {
    case fs::file_type::regular:
      break;
    case fs::file_type::not_found:
      if (fs::is_symlink(fs::symlink_status(path, error))) {
        failStore(StoreErrorCode::kMissing, "the store is a symbolic link to \"" +
                                                fs::read_symlink(path, error).string() +
                                                "\", which does not exist");
      }
      failStore(StoreErrorCode::kMissing, "there is no store");
    case fs::file_type::directory:
      failStore(StoreErrorCode::kCannotCreate, "a folder is in the place of the store");
    case fs::file_type::none:
      if (error == std::errc::permission_denied) {
        failStore(StoreErrorCode::kPermission,
                  "the store's folder cannot be read: permission denied");
      }
      failStore(StoreErrorCode::kInputOutput, "the store cannot be reached");
    default:
      failStore(StoreErrorCode::kNotAStore, "the file is not a store");
  }
  if (::access(path.c_str(), R_OK) != 0) {
    failStore(StoreErrorCode::kPermission, "the store cannot be read: permission denied");
  }
  for (const char* suffix : {"-wal", "-shm", "-journal"}) {
    const fs::path companion = beside(path, suffix);
    // Opening a FIFO would block.
    if (fs::exists(companion, error) && !fs::is_regular_file(companion, error)) {
      failStore(StoreErrorCode::kNotAStore,
                companion.filename().string() + " is not a regular file");
    }
  }
}

/// Whether a process was killed while writing and its journal cannot be removed. SQLite would roll
/// its changes back, and fail, on each access.
bool isJournalStuck(const fs::path& path) {
  return isNonEmptyFile(beside(path, "-journal")) &&
         ::access(fs::absolute(path).parent_path().c_str(), W_OK) != 0;
}

/// Triggers of stores with derived attributes call these functions to notify the phone's object
/// graph. Here they do nothing.
void registerTriggerFunctions(sqlite3* handle) {
  constexpr int kArguments = 5;
  const auto returnNull = [](sqlite3_context* context, int, sqlite3_value**) {
    sqlite3_result_null(context);
  };
  for (const char* name : {"NSCoreDataDATriggerUpdatedAffectedObjectValue",
                           "NSCoreDataDATriggerInsertUpdatedAffectedObjectValue"}) {
    sqlite3_create_function_v2(handle, name, kArguments, SQLITE_UTF8 | SQLITE_INNOCUOUS, nullptr,
                               returnNull, nullptr, nullptr, nullptr);
  }
}

}  // namespace

bool isWriteAheadLogged(const fs::path& path) {
  constexpr std::size_t kWriteVersion = 18;
  constexpr char kLogged = 2;
  std::array<char, kWriteVersion + 2> header{};
  std::ifstream(path, std::ios::binary).read(header.data(), header.size());
  return header[kWriteVersion] == kLogged;
}

void StoreConnection::Closer::operator()(sqlite3* database) const {
  sqlite3_close_v2(database);
}

StoreConnection::~StoreConnection() = default;

void StoreConnection::connect(const std::string& name, int flags) {
  // One thread uses a connection: locking inside it would only cost time.
  sqlite3* database = nullptr;
  const int code = sqlite3_open_v2(name.c_str(), &database, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  // Even a failed call returns a database, which has the reason and must be closed.
  database_.reset(database);
  if (code != SQLITE_OK) failSqlite(database, sqlite3_extended_errcode(database));
  sqlite3_busy_timeout(database, kLockWaitMilliseconds);
  sqlite3_extended_result_codes(database, 1);
  // A store may come from anywhere: its views and triggers get no dangerous functions.
  sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  if (!readOnly_) registerTriggerFunctions(database);
  // Opening reads nothing yet.
  execute("SELECT 1 FROM sqlite_schema LIMIT 1");
  // A commit removes the rollback journal. Unless the folder is synced, a power cut can restore the
  // journal, and the next reader would undo the commit.
  if (!readOnly_) execute("PRAGMA synchronous = EXTRA");
}

void StoreConnection::connectImmutable(const fs::path& path) {
  readOnly_ = true;
  immutable_ = true;
  connect(immutableName(path), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
}

bool StoreConnection::isDatabase(const fs::path& path) {
  std::error_code error;
  return fs::is_regular_file(path, error) && (isUsedByOthers(path) || hasDatabaseHeader(path));
}

std::unique_ptr<StoreConnection> StoreConnection::open(const fs::path& path, bool readOnly) {
  checkFile(path);
  std::unique_ptr<StoreConnection> connection(new StoreConnection);
  connection->readOnly_ = readOnly || ::access(path.c_str(), W_OK) != 0 || isJournalStuck(path);
  // The header of a file in use is not read: closing it would release the locks that this process
  // holds through another connection.
  if (connection->readOnly_ && !isUsedByOthers(path) && isWriteAheadLogged(path)) {
    // Otherwise reading would create files beside it, which other users could not write.
    connection->connectImmutable(path);
    return connection;
  }
  const bool hasLog = isNonEmptyFile(beside(path, "-wal"));
  try {
    connection->connect(path.string(),
                        connection->readOnly_ ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE);
  } catch (const StoreFailure& failure) {
    const int code = failure.sqliteResultCode & 0xff;
    if (code != SQLITE_CANTOPEN && code != SQLITE_READONLY) throw;
    // The folder is read only, so that SQLite can neither create the files of a write-ahead log nor
    // roll back what a killed process left half-written.
    if (hasLog || isNonEmptyFile(beside(path, "-journal"))) {
      failStore(StoreErrorCode::kPermission,
                "the store has a log beside it that cannot be merged: permission denied");
    }
    connection->connectImmutable(path);
  }
  // A reader leaves the log and the file as they are.
  if (hasLog) sqlite3_db_config(connection->handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  return connection;
}

void StoreConnection::noteWritten() {
  sqlite3_db_config(handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
}

bool StoreConnection::isInTransaction() const {
  return sqlite3_get_autocommit(handle()) == 0;
}

void StoreConnection::execute(const std::string& sql) {
  const int code = sqlite3_exec(handle(), sql.c_str(), nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) failSqlite(handle(), code);
}

Statement StoreConnection::statement(std::string sql) {
  const auto entry = statements_.try_emplace(std::move(sql)).first;
  return {handle(), entry->second, entry->first};
}

const std::vector<std::string>& StoreConnection::columnsOfTable(const std::string& table) {
  const auto known = columns_.find(table);
  if (known != columns_.end()) return known->second;
  std::vector<std::string> columns;
  auto query = statement("SELECT name FROM pragma_table_info(?)");
  query.bind(table);
  while (query.next()) columns.emplace_back(query.text(0));
  return columns_.emplace(table, std::move(columns)).first->second;
}

bool StoreConnection::tableExists(const std::string& name) {
  return !columnsOfTable(name).empty();
}

Transaction::Transaction(StoreConnection& connection, Kind kind) : connection_(connection) {
  connection_.execute(kind == Kind::kWrite ? "BEGIN IMMEDIATE" : "BEGIN");
}

Transaction::~Transaction() {
  // SQLite has rolled back already after some errors.
  if (isOpen_) sqlite3_exec(connection_.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::commit() {
  connection_.execute("COMMIT");
  isOpen_ = false;
}

}  // namespace vantrel
