#pragma once

#include <gtest/gtest.h>

#include "defaults/VantrelUserDefaults.h"
#include "support/Guards.h"
#include "units/DistanceUnitsManager.h"

namespace vantrel::test {

/// Provides shared settings in a temporary folder, empty and metric at the start of each test.
class SharedSettings : public ::testing::Test {
 protected:
  SharedSettings() {
    for (const auto& [key, value] : defaults().dictionaryRepresentation().entries()) {
      defaults().removeObjectForKey(key);
    }
    EXPECT_TRUE(defaults().synchronize());
    DistanceUnitsManager::sharedInstance().setCurrentUnits(DistanceUnitsManager::kMetric);
  }

  static UserDefaults& defaults() {
    // Set before the first use of the settings, which keep their folder.
    static const TemporaryDirectory container;
    static const EnvironmentGuard environment("VANTREL_GROUP_CONTAINER", container.path());
    return VantrelUserDefaults::vantrelUserDefaults();
  }
};

}  // namespace vantrel::test
