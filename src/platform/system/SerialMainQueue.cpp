#include "platform/system/SerialMainQueue.h"

#include <chrono>
#include <utility>

namespace vantrel {

void SerialMainQueue::async(std::function<void()> function) {
  {
    const std::lock_guard lock(mutex_);
    functions_.push_back(std::move(function));
  }
  added_.notify_one();
}

void SerialMainQueue::runUntilEmpty() {
  while (runNext(0)) {
  }
}

bool SerialMainQueue::runNext(double seconds) {
  std::function<void()> function;
  {
    std::unique_lock lock(mutex_);
    if (!added_.wait_for(lock, std::chrono::duration<double>(seconds),
                         [this] { return !functions_.empty(); })) {
      return false;
    }
    function = std::move(functions_.front());
    functions_.pop_front();
  }
  function();
  return true;
}

}  // namespace vantrel
