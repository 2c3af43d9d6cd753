#pragma once

#include <QThreadPool>
#include <memory>
#include <utility>

#include "platform/system/Operation.h"

namespace vantrel {

/// Runs operations concurrently on a pool of threads. The destructor discards operations that have
/// not started and waits for the others.
class QtOperationQueue {
 public:
  QtOperationQueue() = default;
  QtOperationQueue(QtOperationQueue&&) = delete;
  ~QtOperationQueue() {
    pool_.clear();
    pool_.waitForDone();
  }

  /// Thread-safe.
  void addOperation(std::shared_ptr<Operation> operation) {
    pool_.start([operation = std::move(operation)] {
      if (!operation->isCancelled()) operation->main();
    });
  }

 private:
  QThreadPool pool_;
};

}  // namespace vantrel
