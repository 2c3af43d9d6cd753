#include "common/StoreWatcher.h"

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>

#include "base/Log.h"

namespace vantrel {

namespace {

constexpr std::uint32_t kWatched = IN_CREATE | IN_MODIFY | IN_CLOSE_WRITE | IN_DELETE |
                                   IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF;
constexpr double kInterval = 60;
constexpr double kIntervalWithoutWatch = 2;

/// The log and journal are in the folder that the store's link points to.
std::filesystem::path resolved(const std::filesystem::path& path) {
  std::error_code error;
  auto result = std::filesystem::weakly_canonical(path, error);
  return error ? path : result;
}

}  // namespace

StoreWatcher::StoreWatcher(const std::filesystem::path& store)
    : store_(store), events_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
  watchNearestFolder();
  state_ = currentState();
  lastStore_ = state_.front();
  if (isPolling()) logLine("store: cannot watch its folder; checking every 2 seconds");
}

StoreWatcher::FileState StoreWatcher::stateOf(const std::filesystem::path& file) {
  struct stat status {};
  if (stat(file.c_str(), &status) != 0 || status.st_size == 0) return {};
  return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec,
          status.st_mtim.tv_nsec};
}

StoreWatcher::StoreState StoreWatcher::currentState() const {
  const std::string store = resolved(store_);
  return {stateOf(store), stateOf(store + "-wal"), stateOf(store + "-journal")};
}

/// Watches the store's folder or, while that does not exist, the nearest existing one above it. Has
/// no effect if that is watched already.
void StoreWatcher::watchNearestFolder() {
  int before = -1;
  do {
    before = watch_;
    auto folder = resolved(store_).parent_path();
    watch_ = inotify_add_watch(events_.number(), folder.c_str(), kWatched);
    while (watch_ < 0 && (errno == ENOENT || errno == ENOTDIR) && folder.has_relative_path()) {
      folder = folder.parent_path();
      watch_ = inotify_add_watch(events_.number(), folder.c_str(), kWatched);
    }
    if (before >= 0 && before != watch_) inotify_rm_watch(events_.number(), before);
    // Once more after a change: the next folder may have been created before the watch was added.
  } while (watch_ >= 0 && watch_ != before);
}

double StoreWatcher::pollingInterval() const {
  return isPolling() ? kIntervalWithoutWatch : kInterval;
}

StoreWatcher::Change StoreWatcher::read() {
  std::array<char, 4096> bytes{};
  while (::read(events_.number(), bytes.data(), bytes.size()) > 0) {
  }
  watchNearestFolder();
  const StoreState now = currentState();
  if (now == state_) return Change::kNone;
  state_ = now;
  const FileState& store = now.front();
  const bool isOther = store.inode != 0 && lastStore_.inode != 0 &&
                       (store.inode != lastStore_.inode || store.device != lastStore_.device);
  if (store.inode != 0) lastStore_ = store;
  pending_ = isOther ? Change::kReplaced : std::max(pending_, Change::kContent);
  return pending_;
}

}  // namespace vantrel
