#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "objectstore/sqlite/Statement.h"

namespace vantrel {

/// Whether the header of the store file says that it is used with a write-ahead log.
bool isWriteAheadLogged(const std::filesystem::path& path);

/// An open store file. All functions throw StoreFailure for errors of SQLite. Main thread only.
class StoreConnection {
 public:
  /// Opens an existing file; read only if it is not writable. Throws StoreFailure.
  static std::unique_ptr<StoreConnection> open(const std::filesystem::path& path, bool readOnly);
  /// Whether the file is a database. Never opens a file in use: closing it would release the locks
  /// that this process holds on it.
  static bool isDatabase(const std::filesystem::path& path);
  ~StoreConnection();
  StoreConnection(const StoreConnection&) = delete;
  StoreConnection& operator=(const StoreConnection&) = delete;

  sqlite3* handle() const { return database_.get(); }
  bool isReadOnly() const { return readOnly_; }
  /// Whether the connection takes no locks and does not notice changes by other processes.
  bool isImmutable() const { return immutable_; }
  bool isInTransaction() const;

  /// Runs statements that take no values.
  void execute(const std::string& sql);
  /// Prepared once for each text, until the connection is closed.
  Statement statement(std::string sql);
  bool tableExists(const std::string& name);
  /// The column names as the file spells them; empty if there is no such table.
  const std::vector<std::string>& columnsOfTable(const std::string& table);
  /// Call after creating or altering tables.
  void forgetTables() { columns_.clear(); }
  /// Call after writing: allows the checkpoint when the connection is closed.
  void noteWritten();

 private:
  StoreConnection() = default;
  void connect(const std::string& name, int flags);
  void connectImmutable(const std::filesystem::path& path);

  struct Closer {
    void operator()(sqlite3* database) const;
  };
  std::unique_ptr<sqlite3, Closer> database_;
  std::unordered_map<std::string, PreparedStatement> statements_;
  std::map<std::string, std::vector<std::string>> columns_;
  bool readOnly_ = false;
  bool immutable_ = false;
};

/// A transaction, which is rolled back unless committed. One to write waits for other writers.
class Transaction {
 public:
  enum class Kind { kRead, kWrite };
  explicit Transaction(StoreConnection& connection, Kind kind = Kind::kWrite);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  void commit();

 private:
  StoreConnection& connection_;
  bool isOpen_ = true;
};

}  // namespace vantrel
