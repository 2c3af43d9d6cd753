#include "objectstore/sqlite/StoreConnection.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Statement.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
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

/// Whether some process has, or had, changes beside the file itself.
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

/// Names the file as one that nobody changes, for which SQLite needs no files beside it.
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
        failStore(StoreErrorCode::kPermission, "the store's folder may not be read");
      }
      failStore(StoreErrorCode::kInputOutput, "the store cannot be reached");
    default:
      failStore(StoreErrorCode::kNotAStore, "the file is not a store");
  }
  if (::access(path.c_str(), R_OK) != 0) {
    failStore(StoreErrorCode::kPermission, "the store may not be read");
  }
  for (const char* suffix : {"-wal", "-shm", "-journal"}) {
    const fs::path companion = beside(path, suffix);
    // SQLite would wait for a FIFO.
    if (fs::exists(companion, error) && !fs::is_regular_file(companion, error)) {
      failStore(StoreErrorCode::kNotAStore,
                companion.filename().string() + " is not a regular file");
    }
  }
}

/// Whether a program was stopped while it wrote, and its journal cannot be removed once its changes
/// are taken back. SQLite would take them back, and fail, each time.
bool isJournalStuck(const fs::path& path) {
  return isNonEmptyFile(beside(path, "-journal")) &&
         ::access(fs::absolute(path).parent_path().c_str(), W_OK) != 0;
}

/// Stores with derived values have triggers that call these; what they would notify does not exist
/// here.
void registerTriggerFunctions(sqlite3* handle) {
  constexpr int kArguments = 5;
  const auto giveNull = [](sqlite3_context* context, int, sqlite3_value**) {
    sqlite3_result_null(context);
  };
  for (const char* name : {"NSCoreDataDATriggerUpdatedAffectedObjectValue",
                           "NSCoreDataDATriggerInsertUpdatedAffectedObjectValue"}) {
    sqlite3_create_function_v2(handle, name, kArguments, SQLITE_UTF8 | SQLITE_INNOCUOUS, nullptr,
                               giveNull, nullptr, nullptr, nullptr);
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

void StoreConnection::Finalizer::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

StoreConnection::StoreConnection() = default;
StoreConnection::~StoreConnection() = default;

void StoreConnection::connect(const std::string& name, int flags) {
  // One thread uses a connection: locking inside it would only cost time.
  database_ =
      std::make_unique<SQLite::Database>(name, flags | SQLite::OPEN_NOMUTEX, kLockWaitMilliseconds);
  sqlite3* handle = database_->getHandle();
  sqlite3_extended_result_codes(handle, 1);
  // A store may come from anywhere: its views and triggers get no dangerous functions.
  sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  if (!readOnly_) registerTriggerFunctions(handle);
}

void StoreConnection::connectImmutable(const fs::path& path) {
  connect(immutableName(path), SQLite::OPEN_READONLY | SQLite::OPEN_URI);
  immutable_ = true;
}

void StoreConnection::probe() {
  database_->exec("SELECT 1 FROM sqlite_schema LIMIT 1");
}

bool StoreConnection::isDatabase(const fs::path& path) {
  std::error_code error;
  return fs::is_regular_file(path, error) && (isUsedByOthers(path) || hasDatabaseHeader(path));
}

std::unique_ptr<StoreConnection> StoreConnection::open(const fs::path& path, bool readOnly) {
  checkFile(path);
  std::unique_ptr<StoreConnection> connection(new StoreConnection);
  connection->readOnly_ = readOnly || ::access(path.c_str(), W_OK) != 0 || isJournalStuck(path);
  // A file in use is not looked into first: closing it would let go of the locks that this process
  // holds by another connection, and the log could be taken away from under that.
  if (connection->readOnly_ && !isUsedByOthers(path) && isWriteAheadLogged(path)) {
    // Otherwise reading would leave files beside it, which whoever may write could not use.
    connection->connectImmutable(path);
    connection->probe();
    return connection;
  }
  const bool hasLog = isNonEmptyFile(beside(path, "-wal"));
  try {
    connection->connect(path.string(),
                        connection->readOnly_ ? SQLite::OPEN_READONLY : SQLite::OPEN_READWRITE);
    connection->probe();
  } catch (const SQLite::Exception& exception) {
    const int code = exception.getErrorCode() & 0xff;
    if (code != SQLITE_CANTOPEN && code != SQLITE_READONLY) throw;
    // The folder may not be written, where the files of a write-ahead log would have to stand; or
    // a program was stopped in the middle of writing, and the file is whole only with its journal.
    if (hasLog || isNonEmptyFile(beside(path, "-journal"))) {
      failStore(StoreErrorCode::kPermission,
                "the store has unsaved parts beside it, which may not be written into it");
    }
    connection->readOnly_ = true;
    connection->connectImmutable(path);
    connection->probe();
  }
  if (hasLog) {
    // Who only reads leaves the log and the file as they are.
    sqlite3_db_config(connection->database_->getHandle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1,
                      nullptr);
  }
  return connection;
}

void StoreConnection::noteWritten() {
  sqlite3_db_config(database_->getHandle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
}

void StoreConnection::setPragmas(const std::map<std::string, std::string>& pragmas) {
  const auto isWord = [](const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char c) {
      return std::isalnum(c) || c == '_' || c == '-';
    });
  };
  for (const auto& [name, value] : pragmas) {
    if (!isWord(name) || !isWord(value)) {
      failStore(StoreErrorCode::kInvalidRequest, "the store has no such setting: " + name);
    }
    std::string pragma = "PRAGMA ";
    pragma.append(name).append(" = ").append(value);
    database_->exec(pragma);
  }
}

StatementUse::~StatementUse() {
  statement_.tryReset();
}

StatementUse StoreConnection::statement(const std::string& sql) {
  auto& statement = statements_[sql];
  if (!statement) statement = std::make_unique<SQLite::Statement>(*database_, sql);
  statement->clearBindings();
  return StatementUse(*statement);
}

sqlite3_stmt* StoreConnection::reader(const std::string& sql) {
  auto& statement = readers_[sql];
  if (!statement) {
    sqlite3_stmt* prepared = nullptr;
    const int code =
        sqlite3_prepare_v3(database_->getHandle(), sql.c_str(), static_cast<int>(sql.size() + 1),
                           SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
    if (code != SQLITE_OK) throw SQLite::Exception(database_->getHandle(), code);
    statement.reset(prepared);
  }
  sqlite3_reset(statement.get());
  sqlite3_clear_bindings(statement.get());
  return statement.get();
}

const std::vector<std::string>& StoreConnection::columnsOfTable(const std::string& table) {
  const auto known = columns_.find(table);
  if (known != columns_.end()) return known->second;
  std::vector<std::string> columns;
  SQLite::Statement query(*database_, "SELECT name FROM pragma_table_info(?)");
  query.bind(1, table);
  while (query.executeStep()) columns.push_back(query.getColumn(0).getString());
  return columns_.emplace(table, std::move(columns)).first->second;
}

bool StoreConnection::tableExists(const std::string& name) {
  return !columnsOfTable(name).empty();
}

}  // namespace vantrel
