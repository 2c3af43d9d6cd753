#include "platform/system/MainQueue.h"

#include "platform/system/SerialMainQueue.h"

namespace vantrel {

namespace {

std::shared_ptr<MainQueue>& installedQueue() {
  static std::shared_ptr<MainQueue> queue;
  return queue;
}

}  // namespace

MainQueue& MainQueue::sharedQueue() {
  if (installedQueue()) return *installedQueue();
  static SerialMainQueue serial;
  return serial;
}

void MainQueue::install(std::shared_ptr<MainQueue> queue) {
  installedQueue() = std::move(queue);
}

}  // namespace vantrel
