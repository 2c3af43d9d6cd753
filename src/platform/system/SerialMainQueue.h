#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>

#include "platform/system/MainQueue.h"

namespace vantrel {

/// A main queue for programs without an event loop: `main` runs what has gathered.
class SerialMainQueue : public MainQueue {
 public:
  void async(std::function<void()> function) override;
  /// Runs functions until the queue is empty, those added meanwhile included. Main thread.
  void runUntilEmpty();
  /// Waits for one function and runs it; false when none came within `seconds`. Main thread.
  bool runNext(double seconds);

 private:
  std::mutex mutex_;
  std::condition_variable added_;
  std::deque<std::function<void()>> functions_;
};

}  // namespace vantrel
