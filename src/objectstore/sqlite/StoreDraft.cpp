#include "objectstore/sqlite/StoreDraft.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
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
    // SQLite would write a lost store's pages into the new one. (A program that makes the store
    // now has the file in place before there is a log.)
    if (error || size == 0 || fs::exists(place, error)) continue;
    failStore(StoreErrorCode::kCannotCreate,
              "a part of a store that is missing is in the way: " + log.filename().string());
  }
}

[[noreturn]] void failCreation(int systemError) {
  switch (systemError) {
    case EACCES:
    case EPERM:
      failStore(StoreErrorCode::kPermission, "the store's folder may not be written");
    case ENOSPC:
    case EDQUOT:
      failStore(StoreErrorCode::kDiskFull, "the disk is full");
    case ENOENT:
    case ENOTDIR:
      failStore(StoreErrorCode::kCannotCreate, "the store's folder does not exist");
    default:
      failStore(StoreErrorCode::kCannotCreate, "the store cannot be made");
  }
}

fs::path draftFile(const fs::path& place, std::string_view identifier) {
  return fs::path(place).concat(".").concat(identifier);
}

fs::path draftFolder(const fs::path& place, std::string_view identifier) {
  return supportFolder(place).concat(".").concat(identifier);
}

/// The file itself goes last: as long as it is there, the rest is found.
void removeDraft(const fs::path& place, std::string_view identifier) {
  std::error_code ignored;
  fs::remove_all(draftFolder(place, identifier), ignored);
  for (const char* suffix : {"-wal", "-shm", "-journal", ""}) {
    fs::remove(draftFile(place, identifier) += suffix, ignored);
  }
}

std::string identifierOf(const fs::path& file) {
  return file.extension().string().substr(1);
}

bool isIdentifier(std::string_view text) {
  constexpr std::size_t kLength = 36;
  return text.size() == kLength && std::all_of(text.begin(), text.end(), [](unsigned char c) {
           return std::isxdigit(c) || c == '-';
         });
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

StoreDraft::StoreDraft(fs::path place) : place_(std::move(place)) {
  checkNoLog(place_);
  removeStaleDrafts();
  while (lock_ < 0) create();
}

StoreDraft::~StoreDraft() {
  std::error_code ignored;
  for (auto path = placed_.rbegin(); path != placed_.rend(); ++path) fs::remove(*path, ignored);
  removeDraft(place_, identifierOf(file_));
  ::close(lock_);
}

fs::path StoreDraft::folder() const {
  return draftFolder(place_, identifierOf(file_));
}

void StoreDraft::create() {
  file_ = draftFile(place_, uuidString());
  const int file = ::open(file_.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, kPrivate);
  if (file < 0) failCreation(errno);
  // A file system that knows no locks has no lock to respect either.
  ::flock(file, LOCK_EX);
  struct stat status = {};
  // Before it was locked another program may have taken it for one that was left behind.
  if (::fstat(file, &status) == 0 && status.st_nlink > 0) {
    lock_ = file;
  } else {
    ::close(file);
  }
}

void StoreDraft::removeStaleDrafts() const {
  const std::string start = place_.filename().string() + ".";
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(place_.parent_path(), error)) {
    const std::string name = entry.path().filename().string();
    if (!name.starts_with(start) || !isIdentifier(name.substr(start.size()))) continue;
    // Whoever works on a draft holds its lock; a second name is that of a store in its place, whose
    // locks (this process's too) closing it would let go of.
    if (entry.hard_link_count(error) == 1 && !error) {
      const int file = ::open(entry.path().c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC);
      if (file < 0) continue;
      const bool isStale = ::flock(file, LOCK_EX | LOCK_NB) == 0;
      if (isStale) removeDraft(place_, name.substr(start.size()));
      ::close(file);
    } else if (!error) {
      removeDraft(place_, name.substr(start.size()));
    }
  }
}

void StoreDraft::publishFolder() {
  std::error_code error;
  if (!fs::exists(folder(), error)) return;
  const fs::path target = supportFolder(place_);
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
      // Left by a program that was stopped before it placed the store; what another store left,
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
  if (::link(file_.c_str(), place_.c_str()) == 0) return true;
  if (errno == EEXIST) return false;
  // Some file systems know no second name for a file.
  std::error_code error;
  if (fs::exists(fs::symlink_status(place_, error))) return false;
  fs::rename(file_, place_, error);
  if (error) failStore(StoreErrorCode::kCannotCreate, "the store cannot be made");
  return true;
}

bool StoreDraft::publish() {
  publishFolder();
  // The pictures, and all that the file lacks yet, before the file's name.
  if (!placed_.empty() ? ::syncfs(lock_) != 0 : ::fsync(lock_) != 0) {
    failStore(StoreErrorCode::kInputOutput, "the store cannot be written");
  }
  if (!publishFile()) return false;
  placed_.clear();
  const int folder = ::open(place_.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  // Some file systems synchronise no folders.
  const bool isKept = folder >= 0 && (::fsync(folder) == 0 || errno == EINVAL);
  ::close(folder);
  if (!isKept) {
    failStore(StoreErrorCode::kInputOutput, "the store is made, but its folder cannot be written");
  }
  return true;
}

}  // namespace vantrel
