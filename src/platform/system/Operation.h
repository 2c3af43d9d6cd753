#pragma once

#include <atomic>
#include <memory>

namespace vantrel {

/// Work that a queue runs once, on another thread. Always owned by a `shared_ptr`, so that pending
/// callbacks can keep it alive. Thread-safe.
class Operation : public std::enable_shared_from_this<Operation> {
 public:
  Operation() = default;
  virtual ~Operation() = default;
  Operation(Operation&&) = delete;

  /// The body, called by the queue unless the operation is cancelled. It may start work that goes
  /// on after it returns.
  virtual void main() = 0;

  /// Permanent. After a call on the main thread, the operation posts no more notifications.
  void cancel() { cancelled_ = true; }
  bool isCancelled() const { return cancelled_; }

 private:
  std::atomic<bool> cancelled_ = false;
};

}  // namespace vantrel
