#pragma once

#include <functional>
#include <memory>

namespace vantrel {

/// Runs functions one after the other on the main thread, never inside the call that adds them.
/// Replaceable: `main` or a test installs the one to use.
class MainQueue {
 public:
  virtual ~MainQueue() = default;
  /// Any thread. The function runs on a later turn of the main thread, in the order of the calls.
  virtual void async(std::function<void()> function) = 0;

  /// The installed queue; a SerialMainQueue when none was.
  static MainQueue& sharedQueue();
  /// Null brings the default back. Main thread, before others ask.
  static void install(std::shared_ptr<MainQueue> queue);
};

}  // namespace vantrel
