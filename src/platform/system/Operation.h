#pragma once

#include <atomic>
#include <memory>

namespace vantrel {

/// A piece of work that a queue runs once, on a thread of its own. Always owned by a `shared_ptr`:
/// what is still under way for it keeps it alive. Any thread.
class Operation : public std::enable_shared_from_this<Operation> {
 public:
  Operation() = default;
  virtual ~Operation() = default;
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;

  /// The body. What it started may go on when it returns. Called by the queue, not when cancelled.
  virtual void main() = 0;

  /// For good. Once this returned on the main thread, no notice of the operation follows.
  void cancel() { cancelled_ = true; }
  bool isCancelled() const { return cancelled_; }

 private:
  std::atomic<bool> cancelled_ = false;
};

}  // namespace vantrel
