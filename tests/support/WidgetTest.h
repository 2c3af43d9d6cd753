#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "platform/system/MainQueue.h"
#include "platform/system/SerialMainQueue.h"
#include "store/Database.h"
#include "store/Planning.h"
#include "support/Guards.h"

namespace vantrel::test {

/// Provides a main queue that the test runs, and the process's shared store in a temporary group
/// container. The locale is British English; the device's zone, Kathmandu, is that of no plan.
class WidgetTest : public ::testing::Test {
 protected:
  WidgetTest() { MainQueue::install(queue); }
  ~WidgetTest() override { MainQueue::install(nullptr); }

  /// Inserts a plan without saving it. Attributes that are `nullopt` are absent.
  static std::shared_ptr<Planning> add(const std::optional<std::string>& name,
                                       const std::optional<Date>& date,
                                       const std::optional<std::string>& timezone = std::nullopt) {
    auto plan = std::dynamic_pointer_cast<Planning>(context().insertNewObject("Planning"));
    plan->setName(name);
    plan->setDate(date);
    plan->setTimezone(timezone);
    return plan;
  }
  static void save() { ASSERT_TRUE(context().save()); }
  std::filesystem::path storeFile() const { return container / "Vantrel.sqlite"; }

  TemporaryDirectory container;
  EnvironmentGuard group{"VANTREL_GROUP_CONTAINER", container.path()};
  EnvironmentGuard locale{"LC_ALL", "en_GB.UTF-8"};
  EnvironmentGuard language{"LANGUAGE", std::nullopt};
  EnvironmentGuard zone{"TZ", "Asia/Kathmandu"};
  std::shared_ptr<SerialMainQueue> queue = std::make_shared<SerialMainQueue>();

 private:
  static ManagedObjectContext& context() {
    return *Database::sharedInstance().managedObjectContext();
  }
};

}  // namespace vantrel::test
