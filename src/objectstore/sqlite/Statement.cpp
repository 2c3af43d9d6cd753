#include "objectstore/sqlite/Statement.h"

#include <sqlite3.h>

#include <new>
#include <string>
#include <type_traits>
#include <utility>

#include "objectstore/sqlite/StoreError.h"

namespace vantrel {

void StatementFinalizer::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

void failSqlite(sqlite3* database, int resultCode) {
  if ((resultCode & 0xff) == SQLITE_NOMEM) {
    // As a failed `new` does.
    if (const auto handler = std::get_new_handler()) handler();
    throw std::bad_alloc();
  }
  Error error = errorFromSqlite(resultCode, sqlite3_system_errno(database));
  error.userInfo.emplace("reason", sqlite3_errmsg(database));
  throw StoreFailure{std::move(error), resultCode};
}

Statement::Statement(sqlite3* database, PreparedStatement& home, std::string_view sql)
    : database_(database), home_(home), statement_(std::move(home)) {
  if (statement_) return;
  sqlite3_stmt* prepared = nullptr;
  check(sqlite3_prepare_v3(database, sql.data(), static_cast<int>(sql.size()),
                           SQLITE_PREPARE_PERSISTENT, &prepared, nullptr));
  statement_.reset(prepared);
}

Statement::~Statement() {
  if (!statement_) return;
  reset();
  home_ = std::move(statement_);
}

void Statement::reset() {
  sqlite3_reset(statement_.get());
  sqlite3_clear_bindings(statement_.get());
  bound_ = 0;
}

void Statement::check(int resultCode) const {
  if (resultCode != SQLITE_OK) failSqlite(database_, sqlite3_extended_errcode(database_));
}

Statement& Statement::bind(std::int64_t value) {
  check(sqlite3_bind_int64(handle(), ++bound_, value));
  return *this;
}

Statement& Statement::bind(std::string_view text) {
  check(sqlite3_bind_text64(handle(), ++bound_, text.data(), text.size(), SQLITE_STATIC,
                            SQLITE_UTF8));
  return *this;
}

Statement& Statement::bind(std::span<const std::byte> bytes) {
  // A null pointer would be bound as NULL.
  const void* data = bytes.empty() ? "" : static_cast<const void*>(bytes.data());
  check(sqlite3_bind_blob64(handle(), ++bound_, data, bytes.size(), SQLITE_STATIC));
  return *this;
}

Statement& Statement::bindValue(const Value& value) {
  std::visit(
      [&](const auto& content) {
        using T = std::decay_t<decltype(content)>;
        if constexpr (std::is_same_v<T, std::monostate>) {
          ++bound_;
        } else if constexpr (std::is_same_v<T, double>) {
          check(sqlite3_bind_double(handle(), ++bound_, content));
        } else if constexpr (std::is_same_v<T, Date>) {
          check(sqlite3_bind_double(handle(), ++bound_, content.timeIntervalSinceReferenceDate()));
        } else if constexpr (std::is_same_v<T, std::string>) {
          bind(std::string_view(content));
        } else if constexpr (std::is_same_v<T, std::vector<std::byte>>) {
          bind(std::span(content));
        } else {
          bind(content);
        }
      },
      value);
  return *this;
}

bool Statement::next() {
  const int code = sqlite3_step(handle());
  if (code != SQLITE_ROW && code != SQLITE_DONE) check(code);
  return code == SQLITE_ROW;
}

int Statement::execute() {
  next();
  const int changed = sqlite3_changes(database_);
  reset();
  return changed;
}

std::int64_t Statement::integer(int column) const {
  return sqlite3_column_int64(handle(), column);
}

std::string_view Statement::text(int column) const {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(handle(), column));
  return {text, text ? static_cast<std::size_t>(sqlite3_column_bytes(handle(), column)) : 0};
}

std::span<const std::byte> Statement::bytes(int column) const {
  const auto* bytes = static_cast<const std::byte*>(sqlite3_column_blob(handle(), column));
  return {bytes, bytes ? static_cast<std::size_t>(sqlite3_column_bytes(handle(), column)) : 0};
}

}  // namespace vantrel
