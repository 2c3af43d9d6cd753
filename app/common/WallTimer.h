#pragma once

#include "base/Date.h"
#include "base/FileDescriptor.h"

namespace vantrel {

/// Fires at an instant of the wall clock, through suspends and changes of the clock, which ordinary
/// timers sleep through. For a caller with an event loop of its own. One thread.
class WallTimer {
 public:
  enum class Event { kNone, kReached, kClockSet };

  WallTimer();

  /// Becomes readable when there is an event; -1 when the system has none to give.
  int fileDescriptor() const { return file_.number(); }
  /// Arms the timer, in place of an earlier instant; one that has passed fires at once. False when
  /// the system refuses.
  bool fireAt(Date instant);
  /// What happened since the last call; never waits. After kClockSet (also told on the return from
  /// suspend) the timer is to be armed again.
  Event read();

 private:
  FileDescriptor file_;
};

}  // namespace vantrel
