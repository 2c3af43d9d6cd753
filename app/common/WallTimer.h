#pragma once

#include "base/Date.h"
#include "base/FileDescriptor.h"

namespace vantrel {

/// Fires at an instant of the wall clock and accounts for suspends and clock changes, unlike
/// ordinary timers. For callers with an event loop. Not thread-safe.
class WallTimer {
 public:
  enum class Event { kNone, kReached, kClockSet };

  WallTimer();

  /// Becomes readable when there is an event; -1 if the system has no descriptor left.
  int fileDescriptor() const { return file_.number(); }
  /// Arms the timer and replaces an earlier instant; a past one fires at once. Returns whether the
  /// system accepted it.
  bool fireAt(Date instant);
  /// Returns what happened since the last call; never blocks. After kClockSet (also reported after
  /// a suspend) the caller must arm the timer again.
  Event read();

 private:
  FileDescriptor file_;
};

}  // namespace vantrel
