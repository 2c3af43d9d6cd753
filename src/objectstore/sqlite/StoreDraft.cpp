#include "objectstore/sqlite/StoreDraft.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/Uuid.h"
#include "objectstore/sqlite/ExternalData.h"
#include "objectstore/sqlite/StoreError.h"

namespace vantrel {

namespace fs = std::filesystem;

namespace {

constexpr mode_t kPrivate = S_IRUSR | S_IWUSR;

void checkNoLog(const fs::path& place) {
  for (const char* suffix : {"-wal", "-journal"}) {
    std::error_code error;
    const auto log = fs::path(place) += suffix;
    const auto size = fs::file_size(log, error);
    // SQLite would apply the log of a lost store to the new one. (A process that creates the store
    // concurrently has the file in place before there is a log.)
    if (error || size == 0 || fs::exists(place, error)) continue;
    failStore(StoreErrorCode::kCannotCreate,
              "the log of a missing store is in the way: " + log.filename().string());
  }
}

[[noreturn]] void failCreation(int systemError) {
  switch (systemError) {
    case EACCES:
    case EPERM:
      failStore(StoreErrorCode::kPermission,
                "the store's folder cannot be written: permission denied");
    case ENOSPC:
    case EDQUOT:
      failStore(StoreErrorCode::kDiskFull, "the disk is full");
    case ENOENT:
    case ENOTDIR:
      failStore(StoreErrorCode::kCannotCreate, "the store's folder does not exist");
    default:
      failStore(StoreErrorCode::kCannotCreate, "the store cannot be created");
  }
}

/// The name of a draft's directory is this prefix and a UUID.
constexpr std::string_view kDirectoryPrefix = ".vantrel-draft.";
constexpr const char* kFileName = "Draft.sqlite";
/// Created before a draft's other files and removed after them; locked by its process.
constexpr const char* kMarkerName = "vantrel-store-draft.lock";

fs::path fileOf(const fs::path& directory) {
  return directory / kFileName;
}

/// Removes the files of a draft by name; other files in its directory stay. Removes the marker
/// last, so that the next draft can complete an interrupted removal.
void removeFiles(const fs::path& directory) {
  std::error_code ignored;
  const fs::path folder = supportFolder(fileOf(directory));
  fs::remove_all(folder, ignored);
  for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
    fs::remove(fileOf(directory) += suffix, ignored);
  }
  if (!fs::exists(folder, ignored)) fs::remove(directory / kMarkerName, ignored);
}

bool isDirectoryName(std::string_view name) {
  constexpr std::size_t kIdentifierLength = 36;
  return name.size() == kDirectoryPrefix.size() + kIdentifierLength &&
         name.starts_with(kDirectoryPrefix);
}

bool isOwnDirectory(const fs::path& path) {
  struct stat status = {};
  return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
         status.st_uid == ::geteuid();
}

bool haveSameContent(const fs::path& a, const fs::path& b) {
  std::error_code error;
  if (fs::symlink_status(b, error).type() != fs::symlink_status(a, error).type()) return false;
  std::ifstream first(a, std::ios::binary);
  std::ifstream second(b, std::ios::binary);
  using Bytes = std::istreambuf_iterator<char>;
  return std::equal(Bytes(first), Bytes(), Bytes(second), Bytes());
}

}  // namespace

StoreDraft::StoreDraft(const fs::path& place) : place_(fs::absolute(place)) {
  checkNoLog(place_);
  removeStaleDrafts();
  while (!lock_) create();
  try {
    clear();
  } catch (const StoreFailure&) {
    remove();
    throw;
  }
}

StoreDraft::~StoreDraft() {
  std::error_code ignored;
  if (isFolderPlaced_) fs::rename(supportFolder(place_), folder(), ignored);
  for (auto path = placed_.rbegin(); path != placed_.rend(); ++path) fs::remove(*path, ignored);
  remove();
}

fs::path StoreDraft::file() const {
  return fileOf(directory_);
}

fs::path StoreDraft::folder() const {
  return supportFolder(file());
}

void StoreDraft::create() {
  directory_ = place_.parent_path() / std::string(kDirectoryPrefix).append(uuidString());
  if (::mkdir(directory_.c_str(), S_IRWXU) != 0) failCreation(errno);
  FileDescriptor marker(
      ::open((directory_ / kMarkerName).c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, kPrivate));
  if (!marker) {
    // Another process may have removed the directory: it had no marker yet.
    if (errno == ENOENT) return;
    const int error = errno;
    ::rmdir(directory_.c_str());
    failCreation(error);
  }
  // Ignore the result: on a file system without locks, no other process can hold one.
  ::flock(marker.number(), LOCK_EX);
  struct stat status = {};
  // Before the lock, another process may have removed the marker as abandoned.
  if (::fstat(marker.number(), &status) == 0 && status.st_nlink > 0) lock_ = std::move(marker);
}

void StoreDraft::clear() {
  std::error_code ignored;
  for (const char* suffix : {"", "-wal", "-shm", "-journal"}) fs::remove(file() += suffix, ignored);
  const FileDescriptor created(
      ::open(file().c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, kPrivate));
  if (!created) failCreation(errno);
}

void StoreDraft::remove() {
  removeFiles(directory_);
  // Network file systems keep a removed file's name until it is closed.
  lock_ = FileDescriptor();
  ::rmdir(directory_.c_str());
}

void StoreDraft::removeStaleDrafts() const {
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(place_.parent_path(), error)) {
    const fs::path& directory = entry.path();
    if (!isDirectoryName(directory.filename().string()) || !isOwnDirectory(directory)) continue;
    const FileDescriptor marker(
        ::open((directory / kMarkerName).c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (marker && ::flock(marker.number(), LOCK_EX | LOCK_NB) == 0) removeFiles(directory);
    // Only if it is empty: a draft in use has a marker.
    ::rmdir(directory.c_str());
  }
}

void StoreDraft::publishFolder() {
  std::error_code error;
  if (!fs::exists(folder(), error)) return;
  const fs::path target = supportFolder(place_);
  fs::rename(folder(), target, error);
  isFolderPlaced_ = !error;
  if (isFolderPlaced_) return;
  const auto makeFolder = [&](const fs::path& path) {
    if (fs::create_directory(path, error)) placed_.push_back(path);
    if (error) failStore(StoreErrorCode::kCannotCreate, "the store's pictures cannot be placed");
    if (!placed_.empty() && placed_.back() == path) fs::permissions(path, fs::perms::owner_all);
  };
  std::vector<fs::path> files;
  makeFolder(target);
  for (const auto& entry : fs::recursive_directory_iterator(folder())) {
    if (entry.is_directory() && !entry.is_symlink()) {
      makeFolder(target / entry.path().lexically_relative(folder()));
    } else {
      files.push_back(entry.path());
    }
  }
  for (const auto& file : files) {
    const fs::path to = target / file.lexically_relative(folder());
    if (fs::exists(fs::symlink_status(to, error))) {
      // Left behind by a process killed before the store was published; a file of another store
      // stays.
      if (haveSameContent(file, to)) continue;
      failStore(StoreErrorCode::kCannotCreate,
                "a picture of another store is in the way: " + to.filename().string());
    }
    fs::rename(file, to);
    placed_.push_back(to);
  }
}

bool StoreDraft::publishFile() {
  if (::link(file().c_str(), place_.c_str()) == 0) return true;
  if (errno == EEXIST) return false;
  // Some file systems have no hard links.
  std::error_code error;
  if (fs::exists(fs::symlink_status(place_, error))) return false;
  fs::rename(file(), place_, error);
  if (error) failStore(StoreErrorCode::kCannotCreate, "the store cannot be created");
  return true;
}

bool StoreDraft::publish() {
  const FileDescriptor written(::open(file().c_str(), O_RDONLY | O_CLOEXEC));
  std::error_code error;
  const bool hasPictures = fs::exists(folder(), error);
  const auto synchronize = [&] {
    const int number = written.number();
    if (!written || (hasPictures ? ::syncfs(number) : ::fsync(number)) != 0) {
      failStore(StoreErrorCode::kInputOutput, "the store cannot be written");
    }
  };
  // Sync content before names: a picture cut short by a power cut would be in the way of the next
  // copy.
  synchronize();
  publishFolder();
  // Sync the pictures' names before the file's, also those that a killed process left.
  if (hasPictures) synchronize();
  const bool isPublished = publishFile();
  // If another process created the store, it may use the same pictures: do not remove them.
  isFolderPlaced_ = false;
  placed_.clear();
  if (!isPublished) return false;
  if (!synchronizeDirectory(place_.parent_path().c_str())) {
    failStore(StoreErrorCode::kInputOutput,
              "the store is created, but its folder cannot be written");
  }
  return true;
}

}  // namespace vantrel
