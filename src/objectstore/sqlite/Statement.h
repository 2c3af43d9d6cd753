#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "objectstore/model/Value.h"

struct sqlite3;
struct sqlite3_stmt;

namespace vantrel {

struct StatementFinalizer {
  void operator()(sqlite3_stmt* statement) const;
};
using PreparedStatement = std::unique_ptr<sqlite3_stmt, StatementFinalizer>;

/// Throws StoreFailure for an error code of SQLite; `std::bad_alloc` (or what
/// the new handler does) if memory ran out.
[[noreturn]] void failSqlite(sqlite3* database, int resultCode);

/// One execution of a prepared statement, which goes back to `home` in the end, so that it is
/// prepared once and holds no lock between executions. All functions throw StoreFailure for errors
/// of SQLite's. Not thread-safe.
class Statement {
 public:
  /// Takes the statement out of `home`; prepares `sql` if there is none.
  Statement(sqlite3* database, PreparedStatement& home, std::string_view sql);
  ~Statement();
  Statement(Statement&&) = default;

  /// Each binds the next parameter. Text and bytes must outlive the execution.
  Statement& bind(std::int64_t value);
  Statement& bind(std::string_view text);
  Statement& bind(std::span<const std::byte> bytes);
  Statement& bindValue(const Value& value);

  /// Moves to the next row; false if there is none.
  bool next();
  /// Runs a statement that returns no rows. Returns the number of rows that it changed. The
  /// statement can then be bound and executed again.
  int execute();

  /// Values of the current row. NULL is 0 or empty; numbers are converted to text and back.
  std::int64_t integer(int column) const;
  /// Valid until the next call of `next` or `execute`.
  std::string_view text(int column) const;
  std::span<const std::byte> bytes(int column) const;
  /// For reading many rows.
  sqlite3_stmt* handle() const { return statement_.get(); }

 private:
  void check(int resultCode) const;
  void reset();

  sqlite3* database_;
  PreparedStatement& home_;
  PreparedStatement statement_;
  int bound_ = 0;
};

}  // namespace vantrel
