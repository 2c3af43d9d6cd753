#pragma once

#include "platform/system/MainQueue.h"

namespace vantrel {

/// The main queue of a program with Qt's event loop. Needs an application object.
class QtMainQueue : public MainQueue {
 public:
  void async(std::function<void()> function) override;
};

}  // namespace vantrel
