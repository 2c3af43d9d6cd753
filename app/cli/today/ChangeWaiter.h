#pragma once

#include <chrono>
#include <csignal>
#include <filesystem>
#include <optional>
#include <string>

#include "base/Date.h"
#include "base/FileDescriptor.h"
#include "common/StoreWatcher.h"
#include "common/WallTimer.h"

namespace vantrel::cli {

/// Waits until the printed plans may be stale. `wait` also returns on signals that would end the
/// program. Not thread-safe.
class ChangeWaiter {
 public:
  enum class Event {
    kStale,        ///< The store was changed, or `wait` reached its time, or the clock was set.
    kRestart,      ///< The store file was replaced or the device's zone changed.
    kOutputGone,   ///< Standard output was closed.
    kInterrupted,  ///< See signal().
  };

  explicit ChangeWaiter(const std::filesystem::path& store);
  ~ChangeWaiter();
  ChangeWaiter(const ChangeWaiter&) = delete;
  ChangeWaiter& operator=(const ChangeWaiter&) = delete;

  /// Whether file watches are exhausted, so that the store is polled every 2 seconds.
  bool isPolling() const { return store_.isPolling(); }
  /// Ignores earlier changes of the store's content, such as those by opening it. `wait` still
  /// reports that the store was replaced.
  void ignoreStoreChangesSoFar() { readStore(); }
  /// Returns kStale at `deadline` of the program's clock at the latest.
  Event wait(Date deadline);
  /// Waits for `time` or a signal; `nullopt` if there was no signal.
  std::optional<Event> settle(std::chrono::milliseconds time);
  /// The number of the signal of kInterrupted.
  int signal() const { return signal_; }

 private:
  bool isZoneChanged();
  std::optional<Event> receivedSignal();
  Event nextEvent(Date deadline);
  StoreWatcher::Change readStore();

  StoreWatcher store_;
  bool isReplaced_ = false;
  WallTimer timer_;
  FileDescriptor zoneFolder_;  ///< Watches /etc, whose link "localtime" is the device's zone.
  std::string zoneName_;
  sigset_t signalsBefore_{};
  sigset_t awaitedSignals_{};
  FileDescriptor signals_;
  int signal_ = 0;
};

}  // namespace vantrel::cli
