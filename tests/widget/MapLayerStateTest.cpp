#include "widget/MapLayerState.h"

#include <gtest/gtest.h>

#include "defaults/PlannerKeys.h"
#include "support/SharedSettings.h"
#include "widget/TodayUtils.h"

namespace vantrel {
namespace {

using MapLayerStateTest = test::SharedSettings;

TEST_F(MapLayerStateTest, IsVisibleByDefaultAndHiddenIfTheArchiveLacksTheKey) {
  TodayUtils::setPlannerMilkyWayVisible(true);
  EXPECT_EQ(defaults().integerForKey(kUserDefaultsPlannerMilkyWayLayerState), 1);
  for (const bool hasKey : {true, false}) {
    KeyedArchiver archiver;
    const auto root = archiver.addObject({MapLayerState::kClassName, "NSObject"});
    if (hasKey) MapLayerState().encodeWithCoder(root);
    const auto archive =
        KeyedUnarchiver::unarchiverWithData(archiver.archivedDataWithRootObject(root));
    ASSERT_TRUE(archive);
    EXPECT_EQ(archive->root().className(), "MapLayerState");
    EXPECT_EQ(MapLayerState::initWithCoder(archive->root()).isVisible(), hasKey);
  }
}

}  // namespace
}  // namespace vantrel
