#include "platform/qt/QtOperationQueue.h"

#include <utility>

namespace vantrel {

QtOperationQueue::~QtOperationQueue() {
  pool_.clear();
  pool_.waitForDone();
}

void QtOperationQueue::addOperation(std::shared_ptr<Operation> operation) {
  pool_.start([operation = std::move(operation)] {
    if (!operation->isCancelled()) operation->main();
  });
}

}  // namespace vantrel
