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

/// Sleeps until what was shown may be old. While wait() runs, it returns on the signals that would
/// end the program. Not thread-safe.
class ChangeWaiter {
 public:
  enum class Event {
    kStale,        ///< The store has a commit, or the clock is at another instant.
    kRestart,      ///< Another store file or device zone: what this process read once is wrong.
    kOutputGone,   ///< Nobody reads standard output any more.
    kInterrupted,  ///< See signal().
  };

  explicit ChangeWaiter(const std::filesystem::path& store);
  ~ChangeWaiter();
  ChangeWaiter(const ChangeWaiter&) = delete;
  ChangeWaiter& operator=(const ChangeWaiter&) = delete;

  /// Whether the system has no file watch to spare, so that the store is looked at every 2 seconds.
  bool isPolling() const { return store_.isPolling(); }
  /// Forgets changes of the store's content until now: opening a store writes to it. Another store
  /// in its place is still reported by `wait`.
  void ignoreStoreChangesSoFar() { readStore(); }
  /// Returns at `lookAgain`, an instant of the program's clock, or earlier.
  Event wait(Date lookAgain);
  /// Waits for `time` or a signal; the event of the signal if there was one.
  std::optional<Event> settle(std::chrono::milliseconds time);
  /// The signal that interrupted.
  int signal() const { return signal_; }

 private:
  bool isZoneChanged();
  std::optional<Event> receivedSignal();
  Event nextEvent(Date lookAgain);
  StoreWatcher::Change readStore();

  StoreWatcher store_;
  bool isReplaced_ = false;
  WallTimer timer_;
  FileDescriptor zoneFolder_;  ///< Watches where the link "localtime" tells the device's zone.
  std::string zoneName_;
  sigset_t signalsBefore_{};
  sigset_t awaitedSignals_{};
  FileDescriptor signals_;
  int signal_ = 0;
};

}  // namespace vantrel::cli
