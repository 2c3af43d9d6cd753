#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "platform/MainQueue.h"
#include "platform/SerialMainQueue.h"
#include "support/PlanStore.h"

namespace vantrel::test {

/// The widget's surroundings: a store of its own and a main queue that the test runs. The device
/// speaks British English and stands in Kathmandu, where no plan is.
class WidgetTest : public ::testing::Test {
 protected:
  WidgetTest() { MainQueue::install(queue); }
  ~WidgetTest() override { MainQueue::install(nullptr); }

  EnvironmentGuard locale{"LC_ALL", "en_GB.UTF-8"};
  EnvironmentGuard language{"LANGUAGE", std::nullopt};
  EnvironmentGuard zone{"TZ", "Asia/Kathmandu"};
  PlanStore store;
  std::shared_ptr<SerialMainQueue> queue = std::make_shared<SerialMainQueue>();
};

}  // namespace vantrel::test
