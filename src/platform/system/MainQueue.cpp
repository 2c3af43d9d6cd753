#include "platform/system/MainQueue.h"

#include "platform/system/SerialMainQueue.h"

namespace vantrel {

namespace {

std::shared_ptr<MainQueue>& installed() {
  static std::shared_ptr<MainQueue> queue;
  return queue;
}

}  // namespace

MainQueue& MainQueue::sharedQueue() {
  if (installed()) return *installed();
  static SerialMainQueue serial;
  return serial;
}

void MainQueue::install(std::shared_ptr<MainQueue> queue) {
  installed() = std::move(queue);
}

}  // namespace vantrel
