#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "objectstore/sqlite/StoreOptions.h"

struct sqlite3_stmt;

namespace SQLite {
class Database;
class Statement;
}  // namespace SQLite

namespace vantrel {

/// A statement in use: lets go of the store when it goes out of scope.
class StatementUse {
 public:
  explicit StatementUse(SQLite::Statement& statement) : statement_(statement) {}
  ~StatementUse();
  StatementUse(const StatementUse&) = delete;
  StatementUse& operator=(const StatementUse&) = delete;
  SQLite::Statement* operator->() const { return &statement_; }
  SQLite::Statement& operator*() const { return statement_; }

 private:
  SQLite::Statement& statement_;
};

/// Whether the header of the store file says that it is used with a write-ahead log.
bool isWriteAheadLogged(const std::filesystem::path& path);

/// An open store file: the library's connection, set up as all stores are used here, and the
/// statements that were prepared on it. What it and the library throw, SqliteStore turns into
/// errors. Main thread.
class StoreConnection {
 public:
  /// Opens an existing file. A file that may not be written is opened read only. Throws
  /// StoreFailure with one clear reason.
  static std::unique_ptr<StoreConnection> open(const std::filesystem::path& path, bool readOnly);
  /// Whether the file is a database. Does not open a file in use: that would release the locks that
  /// this process holds on it.
  static bool isDatabase(const std::filesystem::path& path);
  ~StoreConnection();
  StoreConnection(const StoreConnection&) = delete;
  StoreConnection& operator=(const StoreConnection&) = delete;

  SQLite::Database& database() { return *database_; }
  bool isReadOnly() const { return readOnly_; }
  /// Whether it neither locks the file nor notices that another process changes it.
  bool isImmutable() const { return immutable_; }
  void setPragmas(const std::map<std::string, std::string>& pragmas);

  /// A statement that is prepared once and kept, without values and not running. One use at a time.
  StatementUse statement(const std::string& sql);
  /// The same for reading many rows, where the library's wrapper costs more than the reading.
  sqlite3_stmt* reader(const std::string& sql);
  bool tableExists(const std::string& name);
  /// Names of the table's columns, as the file spells them; empty when there is no such table.
  const std::vector<std::string>& columnsOfTable(const std::string& table);
  /// To be called when tables have been changed.
  void forgetTables() { columns_.clear(); }
  /// From now on closing may tidy the write-ahead log into the file.
  void noteWritten();

 private:
  StoreConnection();
  void connect(const std::string& name, int flags);
  void connectImmutable(const std::filesystem::path& path);
  void probe();

  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const;
  };
  std::unique_ptr<SQLite::Database> database_;
  std::unordered_map<std::string, std::unique_ptr<SQLite::Statement>> statements_;
  std::unordered_map<std::string, std::unique_ptr<sqlite3_stmt, Finalizer>> readers_;
  std::map<std::string, std::vector<std::string>> columns_;
  bool readOnly_ = false;
  bool immutable_ = false;
};

}  // namespace vantrel
