#include "objectstore/sqlite/StoreCopy.h"

#include <SQLiteCpp/Backup.h>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
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

/// Size and time of each of a store's files: they differ once a program has written.
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

/// A connection that leaves nothing beside the file; null where there can be none: a log without an
/// index would get one, and what a stopped program left half-way would be taken back in the file.
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
  SQLite::Backup backup(target->database(), source.database());
  // In one step: the old store does not change meanwhile, and its writers wait or log.
  if (backup.executeStep(-1) != SQLITE_DONE) {
    failStore(StoreErrorCode::kLocked, "the store is locked by another program");
  }
}

/// The files as they are, of a store that no program has open; opening the copy puts them together.
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

/// The names of pictures in all columns that may hold one, whatever model the store is of.
std::set<std::string> picturesNamed(StoreConnection& store) {
  std::set<std::string> names;
  SQLite::Statement columns(
      store.database(),
      "SELECT t.name, c.name FROM sqlite_schema t, pragma_table_info(t.name) c"
      " WHERE t.type = 'table' AND t.sql LIKE 'CREATE TABLE%'"
      " AND upper(c.type) = 'BLOB'");
  while (columns.executeStep()) {
    const std::string column = sqlName(columns.getColumn(1).getString());
    std::string sql = "SELECT " + column;
    sql.append(" FROM ").append(sqlName(columns.getColumn(0).getString()));
    sql.append(" WHERE typeof(").append(column).append(") = 'blob'");
    sql.append(" AND length(").append(column).append(") = ?");
    SQLite::Statement values(store.database(), sql);
    values.bind(1, static_cast<std::int64_t>(kExternalReferenceSize));
    while (values.executeStep()) {
      const auto name = externalFileName(values.getColumn(0).getString());
      if (name && isIdentifier(*name)) names.insert(*name);
    }
  }
  return names;
}

/// False if another program changed the store so that the copy is not whole.
bool copyOnce(const fs::path& file, StoreDraft& draft, PictureCopy& pictures) {
  std::error_code error;
  // Before the rows, since rows and pictures may be removed while they are copied, and after them,
  // since some may be added.
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
  const auto named = picturesNamed(*StoreConnection::open(draft.file(), false));
  const bool isLive = source && !source->isImmutable();
  // Without locks nothing keeps another program from writing, but it shows.
  if (!isLive && stateOf(file) != before) return false;
  std::set<std::string> missing;
  for (const auto& name : named) {
    if (!fs::exists(externalFile(draft.file(), name), error)) missing.insert(name);
  }
  if (isLive && !missing.empty()) {
    // Rows are removed before their pictures. What is still named is missing in the old store, too.
    const auto now = picturesNamed(*source);
    if (!std::includes(now.begin(), now.end(), missing.begin(), missing.end())) return false;
  }
  pictures.removeVanished(named);
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
    // Closing a log or index would release the locks that this process holds on it.
    const bool isCompanion =
        std::any_of(kCompanions.begin(), kCompanions.end(),
                    [&](std::string_view suffix) { return name.ends_with(suffix); });
    if (isCompanion || other.stem() != place.stem()) continue;
    // A link's pictures are beside the file that it leads to.
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
