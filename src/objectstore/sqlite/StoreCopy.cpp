#include "objectstore/sqlite/StoreCopy.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <system_error>
#include <utility>

#include "objectstore/sqlite/ExternalData.h"
#include "objectstore/sqlite/PictureCopy.h"
#include "objectstore/sqlite/StoreConnection.h"
#include "objectstore/sqlite/StoreError.h"
#include "objectstore/sqlite/StoreLayout.h"

namespace vantrel {

namespace fs = std::filesystem;

namespace {

constexpr std::array kLogs = {"-wal", "-journal"};
constexpr std::array<std::string_view, 3> kCompanions = {"-wal", "-shm", "-journal"};
constexpr int kAttempts = 5;

std::uintmax_t sizeOf(const fs::path& path) {
  std::error_code error;
  const auto size = fs::file_size(path, error);
  return error ? 0 : size;
}

/// Size and time of each of a store's files, which change when a process writes to the store.
auto stateOf(const fs::path& store) {
  std::array<std::pair<std::uintmax_t, fs::file_time_type>, kLogs.size() + 1> state{};
  const auto look = [](const fs::path& path) {
    std::error_code error;
    const auto time = fs::last_write_time(path, error);
    return std::pair(sizeOf(path), error ? fs::file_time_type() : time);
  };
  state.front() = look(store);
  for (std::size_t i = 0; i < kLogs.size(); ++i) state[i + 1] = look(fs::path(store) += kLogs[i]);
  return state;
}

/// Opens a connection that creates no file beside the store and does not change it. Null if that is
/// impossible: SQLite would create the index of a log, or roll back what a killed process wrote.
std::unique_ptr<StoreConnection> openWithoutTrace(const fs::path& file) {
  std::error_code error;
  const bool isInUse = fs::exists(fs::path(file) += "-shm", error);
  const bool hasLog = sizeOf(fs::path(file) += "-wal") > 0;
  if (hasLog && !isInUse && fs::is_regular_file(file, error)) return nullptr;
  try {
    return StoreConnection::open(file, true);
  } catch (const StoreFailure& failure) {
    if (storeErrorCode(failure.error) != StoreErrorCode::kPermission) throw;
    return nullptr;
  }
}

void backUp(StoreConnection& source, const fs::path& file) {
  const auto target = StoreConnection::open(file, false);
  sqlite3_backup* backup = sqlite3_backup_init(target->handle(), "main", source.handle(), "main");
  // All pages in one step: the read lock keeps the old store from changing.
  const int code = backup ? sqlite3_backup_step(backup, -1) : SQLITE_ERROR;
  sqlite3_backup_finish(backup);
  if (code != SQLITE_DONE) failSqlite(target->handle(), code);
}

/// Copies the files of a store that no process has open. Opening the copy merges them.
void copyFiles(const fs::path& from, const fs::path& file) {
  fs::remove(file);
  if (!copyRegularFile(from, file)) failStore(StoreErrorCode::kMissing, "there is no store");
  for (const char* log : kLogs) {
    if (sizeOf(fs::path(from) += log) > 0) {
      copyRegularFile(fs::path(from) += log, fs::path(file) += log);
    }
  }
}

bool isIdentifier(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](unsigned char c) { return std::isxdigit(c) || c == '-'; });
}

/// The names of external files in all BLOB columns, whatever the store's model is.
std::set<std::string> referencedPictures(StoreConnection& store) {
  std::set<std::string> names;
  auto columns = store.statement(
      "SELECT t.name, c.name FROM sqlite_schema t, pragma_table_info(t.name) c"
      " WHERE t.type = 'table' AND t.sql LIKE 'CREATE TABLE%'"
      " AND upper(c.type) = 'BLOB'");
  while (columns.next()) {
    const std::string column = sqlName(columns.text(1));
    std::string sql = "SELECT " + column;
    sql.append(" FROM ").append(sqlName(columns.text(0)));
    sql.append(" WHERE typeof(").append(column).append(") = 'blob'");
    sql.append(" AND length(").append(column).append(") = ?");
    auto values = store.statement(std::move(sql));
    values.bind(kExternalReferenceSize);
    while (values.next()) {
      const auto name = externalFileName(values.bytes(0));
      if (name && isIdentifier(*name)) names.insert(*name);
    }
  }
  return names;
}

/// False if another process changed the store and the copy is inconsistent.
bool copyOnce(const fs::path& file, StoreDraft& draft, PictureCopy& pictures) {
  std::error_code error;
  // Copy pictures before the rows, since another process may remove some of both, and again after
  // the rows, since it may add some.
  pictures.update();
  draft.clear();
  const auto before = stateOf(file);
  const auto source = openWithoutTrace(file);
  if (source) {
    backUp(*source, draft.file());
  } else {
    copyFiles(file, draft.file());
  }
  pictures.update();
  const auto referenced = referencedPictures(*StoreConnection::open(draft.file(), false));
  const bool isLive = source && !source->isImmutable();
  // Without locks another process may have written; then the files' times differ.
  if (!isLive && stateOf(file) != before) return false;
  std::set<std::string> missing;
  for (const auto& name : referenced) {
    if (!fs::exists(externalFile(draft.file(), name), error)) missing.insert(name);
  }
  if (isLive && !missing.empty()) {
    // Rows are removed before their pictures: a picture that is still referenced is missing in the
    // old store, too.
    const auto now = referencedPictures(*source);
    if (!std::includes(now.begin(), now.end(), missing.begin(), missing.end())) return false;
  }
  pictures.removeVanished(referenced);
  return true;
}

}  // namespace

void checkOwnSupportFolder(const fs::path& from, const fs::path& to) {
  const fs::path place = fs::absolute(to);
  const fs::path folder = supportFolder(place);
  const auto fail = [&](const fs::path& store) {
    const std::string other = place.stem().string() + "-copy" + place.extension().string();
    failStore(StoreErrorCode::kCannotCreate,
              "would share the pictures in " + folder.filename().string() + " with " +
                  store.filename().string() + "; choose another folder or name, such as " + other);
  };
  std::error_code error;
  if (fs::equivalent(folder, supportFolder(from), error)) fail(from);
  for (const auto& entry : fs::directory_iterator(place.parent_path(), error)) {
    const fs::path& other = entry.path();
    const std::string name = other.filename().string();
    // Never open a log or index: closing it would release the locks of this process.
    const bool isCompanion =
        std::any_of(kCompanions.begin(), kCompanions.end(),
                    [&](std::string_view suffix) { return name.ends_with(suffix); });
    if (isCompanion || other.stem() != place.stem()) continue;
    // The pictures of a linked store are beside the link's target.
    if (!entry.is_symlink(error) && StoreConnection::isDatabase(other)) fail(other);
  }
}

void copyStore(const fs::path& file, StoreDraft& draft) {
  std::error_code error;
  if (fs::is_directory(file, error)) {
    failStore(StoreErrorCode::kNotAStore, "a folder is not a store; name the .sqlite file in it");
  }
  PictureCopy pictures(supportFolder(file), draft.folder());
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    if (copyOnce(file, draft, pictures)) return;
  }
  failStore(StoreErrorCode::kLocked, "another program is changing the store; try again");
}

}  // namespace vantrel
