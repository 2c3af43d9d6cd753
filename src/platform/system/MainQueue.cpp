#include "platform/system/MainQueue.h"

#include "platform/system/SerialMainQueue.h"

namespace vantrel {

MainQueue& MainQueue::sharedQueue() {
  if (installed_) return *installed_;
  static SerialMainQueue serial;
  return serial;
}

}  // namespace vantrel
