#pragma once

#include <QThreadPool>
#include <memory>

#include "platform/system/Operation.h"

namespace vantrel {

/// Runs operations on threads of its own, several at once. The destructor drops those that have
/// not begun and waits for the bodies of the others.
class QtOperationQueue {
 public:
  QtOperationQueue() = default;
  ~QtOperationQueue();
  QtOperationQueue(const QtOperationQueue&) = delete;
  QtOperationQueue& operator=(const QtOperationQueue&) = delete;

  /// Any thread.
  void addOperation(std::shared_ptr<Operation> operation);

 private:
  QThreadPool pool_;
};

}  // namespace vantrel
