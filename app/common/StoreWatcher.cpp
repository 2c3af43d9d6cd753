#include "common/StoreWatcher.h"

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <string>

namespace vantrel {

namespace {

constexpr std::uint32_t kFolderGone = IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT | IN_IGNORED;
constexpr std::uint32_t kWatched = IN_CREATE | IN_MODIFY | IN_CLOSE_WRITE | IN_DELETE |
                                   IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF;

std::filesystem::path resolved(const std::filesystem::path& path) {
  // The files beside a store that is a link lie where the link points.
  std::error_code error;
  auto result = std::filesystem::weakly_canonical(path, error);
  return error ? path : result;
}

}  // namespace

StoreWatcher::StoreWatcher(const std::filesystem::path& store)
    : store_(resolved(store)),
      descriptor_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      known_(identityOf(store_)) {
  watchNearestFolder();
}

StoreWatcher::~StoreWatcher() {
  if (descriptor_ >= 0) close(descriptor_);
}

std::optional<StoreWatcher::FileIdentity> StoreWatcher::identityOf(
    const std::filesystem::path& file) {
  struct stat status {};
  if (stat(file.c_str(), &status) != 0) return std::nullopt;
  return FileIdentity(status.st_dev, status.st_ino);
}

/// Watches the store's folder or, while that does not exist, the nearest one above it that does.
void StoreWatcher::watchNearestFolder() {
  const auto wanted = store_.parent_path();
  int before = -1;
  do {
    before = watch_;
    auto folder = wanted;
    watch_ = inotify_add_watch(descriptor_, folder.c_str(), kWatched);
    while (watch_ < 0 && folder.has_relative_path()) {
      folder = folder.parent_path();
      watch_ = inotify_add_watch(descriptor_, folder.c_str(), kWatched);
    }
    if (before >= 0 && before != watch_) inotify_rm_watch(descriptor_, before);
    watchesStoreFolder_ = watch_ >= 0 && folder == wanted;
    // Once more while it moves: a folder may have come between the look at it and the watch above.
  } while (watch_ >= 0 && !watchesStoreFolder_ && watch_ != before);
}

bool StoreWatcher::concernsStore(std::uint32_t events, const char* name) const {
  if (events & IN_Q_OVERFLOW) return true;
  const std::string store = store_.filename();
  return watchesStoreFolder_ &&
         (name == store || name == store + "-wal" || name == store + "-journal");
}

/// Reads what has gathered; whether any of it concerns the store or its folder.
bool StoreWatcher::drainEvents() {
  alignas(inotify_event) std::array<char, 4096> buffer{};
  bool concerned = false;
  bool folderGone = false;
  ssize_t length = 0;
  while ((length = ::read(descriptor_, buffer.data(), buffer.size())) > 0) {
    for (std::size_t at = 0; at < static_cast<std::size_t>(length);) {
      const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + at);
      at += sizeof(inotify_event) + event->len;
      if (event->wd >= 0 && event->wd != watch_) continue;  // of a watch given up since
      if (event->mask & kFolderGone) folderGone = true;
      concerned |= concernsStore(event->mask, event->len > 0 ? event->name : "");
    }
  }
  if (watchesStoreFolder_ && !folderGone) return concerned;
  if (folderGone) {
    inotify_rm_watch(descriptor_, watch_);
    watch_ = -1;
  }
  const bool had = watchesStoreFolder_;
  watchNearestFolder();
  return concerned || had || watchesStoreFolder_;
}

StoreWatcher::Change StoreWatcher::read() {
  if (!drainEvents()) return Change::kNone;
  const auto now = identityOf(store_);
  const bool replaced = now && known_ && *now != *known_;
  if (now) known_ = now;
  return replaced ? Change::kReplaced : Change::kContent;
}

}  // namespace vantrel
