#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>

#include "platform/system/MainQueue.h"

namespace vantrel {

/// A main queue for programs without an event loop: `main` runs the queued functions.
class SerialMainQueue : public MainQueue {
 public:
  void async(std::function<void()> function) override;
  /// Runs functions, also those added by them, until the queue is empty. Main thread only.
  void runUntilEmpty();
  /// Runs the next function; waits up to `seconds` for one. False if none arrived. Main thread
  /// only.
  bool runNext(double seconds);

 private:
  std::mutex mutex_;
  std::condition_variable added_;
  std::deque<std::function<void()>> functions_;
};

}  // namespace vantrel
