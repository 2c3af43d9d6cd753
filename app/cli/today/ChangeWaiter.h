#pragma once

#include <csignal>
#include <filesystem>
#include <string>

#include "base/Date.h"
#include "common/StoreWatcher.h"
#include "common/WallTimer.h"

namespace vantrel::cli {

/// Sleeps, without polling, until what was shown may be old. While it lives, the signals that end a
/// program are told here instead. One thread.
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

  /// Forgets what happened to the store until now: opening a store writes to it.
  void ignoreStoreChangesSoFar() { store_.read(); }
  /// Not later than `lookAgain`, an instant of the program's clock.
  Event wait(Date lookAgain);
  /// The signal that interrupted.
  int signal() const { return signal_; }

 private:
  bool isZoneAnother();

  StoreWatcher store_;
  WallTimer timer_;
  int zoneFolder_;  ///< Watches where the link "localtime" tells the device's zone.
  std::string zoneName_;
  sigset_t signalsBefore_{};
  int signals_;
  int signal_ = 0;
};

}  // namespace vantrel::cli
