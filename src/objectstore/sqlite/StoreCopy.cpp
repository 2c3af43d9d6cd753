#include "objectstore/sqlite/StoreCopy.h"

#include <SQLiteCpp/Backup.h>
#include <SQLiteCpp/Database.h>

#include <array>
#include <cstdint>
#include <memory>
#include <system_error>
#include <utility>

#include "objectstore/sqlite/ExternalData.h"
#include "objectstore/sqlite/StoreConnection.h"
#include "objectstore/sqlite/StoreError.h"

namespace vantrel {

namespace fs = std::filesystem;

namespace {

constexpr std::array kLogs = {"-wal", "-journal"};

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
std::unique_ptr<StoreConnection> openWithoutTrace(const fs::path& file, bool isInUse) {
  std::error_code error;
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
  // In one step: the old store stands still meanwhile, and its writers wait or log.
  backup.executeStep(-1);
}

/// The files as they are, of a store that no program has open; opening the copy puts them together.
void copyFiles(const fs::path& from, const fs::path& file) {
  const auto copy = [](const fs::path& source, const fs::path& target) {
    fs::copy_file(source, target, fs::copy_options::overwrite_existing);
    fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write);
  };
  copy(from, file);
  for (const char* log : kLogs) {
    if (sizeOf(fs::path(from) += log) > 0) copy(fs::path(from) += log, fs::path(file) += log);
  }
}

}  // namespace

void copyStore(const fs::path& from, StoreDraft& draft) {
  std::error_code error;
  // The logs stand beside the file that a link leads to.
  const fs::path file = fs::weakly_canonical(from);
  if (fs::is_directory(file, error)) {
    failStore(StoreErrorCode::kNotAStore, "a folder is not a store; name the .sqlite file in it");
  }
  const bool isInUse = fs::exists(fs::path(file) += "-shm", error);
  const auto before = stateOf(file);
  const auto source = openWithoutTrace(file, isInUse);
  if (source) {
    backUp(*source, draft.file());
  } else {
    copyFiles(file, draft.file());
  }
  // Without locks nothing keeps another program from writing, but it shows.
  if (!(source && isInUse) && stateOf(file) != before) {
    failStore(StoreErrorCode::kLocked, "another program is writing the store");
  }
  // Behind the rows that name them: what is added meanwhile does no harm.
  const fs::path pictures = supportFolder(from);
  if (!fs::is_directory(pictures, error)) return;
  fs::copy(pictures, draft.folder(), fs::copy_options::recursive | fs::copy_options::copy_symlinks);
}

}  // namespace vantrel
