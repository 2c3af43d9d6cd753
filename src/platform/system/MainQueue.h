#pragma once

#include <functional>
#include <memory>

namespace vantrel {

/// Runs functions on the main thread. A replaceable service: `main` or a test installs another.
class MainQueue {
 public:
  virtual ~MainQueue() = default;
  /// Queues `function`, which runs on a later turn of the main thread, never in this call.
  /// Functions run in the order of the calls. Thread-safe.
  virtual void async(std::function<void()> function) = 0;

  /// The installed queue, otherwise a `SerialMainQueue`.
  static MainQueue& sharedQueue();
  /// Null restores the default. Main thread only, before other threads use it.
  static void install(std::shared_ptr<MainQueue> queue) { installed_ = std::move(queue); }

 private:
  inline static std::shared_ptr<MainQueue> installed_;
};

}  // namespace vantrel
