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
  /// Forgets changes of the store's content until now: opening a store writes to it. Another store
  /// in its place is still reported by `wait`.
  void ignoreStoreChangesSoFar() { store_.read(); }
  /// Returns at `lookAgain`, an instant of the program's clock, or earlier.
  Event wait(Date lookAgain);
  /// Waits for `time` or a signal; the event of the signal if there was one.
  std::optional<Event> settle(std::chrono::milliseconds time);
  /// The number of the signal of kInterrupted.
  int signal() const { return signal_; }

 private:
  bool isZoneChanged();
  std::optional<Event> receivedSignal();
  Event nextEvent(Date lookAgain);

  StoreWatcher store_;
  WallTimer timer_;
  FileDescriptor zoneFolder_;  ///< Watches /etc, whose link "localtime" is the device's zone.
  std::string zoneName_;
  sigset_t signalsBefore_{};
  sigset_t awaitedSignals_{};
  FileDescriptor signals_;
  int signal_ = 0;
};

}  // namespace vantrel::cli
