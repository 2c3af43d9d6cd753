#include <gtest/gtest.h>

#include "geo/VTObserver.h"
#include "platform/Paths.h"
#include "support/Python.h"
#include "support/SharedSettings.h"
#include "widget/MapLayerState.h"
#include "widget/TodayUtils.h"

namespace vantrel {
namespace {

class PlannerHandOffTest : public test::SharedSettings {
 protected:
  /// As another program finds the settings.
  static std::string python(const std::string& expression) {
    return test::python(
        *paths::groupContainer() / "Library/Preferences/group.vantrel.vantrel.plist", expression);
  }
};

TEST_F(PlannerHandOffTest, PresetsThePlanner) {
  const test::EnvironmentGuard zone("TZ", "Asia/Kathmandu");
  defaults().setBool(true, "planner_obstacleToggle");
  TodayUtils::setDefaultPlannerPosition({41.39, 2.17}, Date(742069876.576084));
  EXPECT_EQ(python("sorted((k, v) for k, v in p.items() if k.startswith('planner') and"
                   " k != 'planner_observer')"),
            "[('planner_date', datetime.datetime(2024, 7, 7, 18, 31, 16, 576084)), "
            "('planner_mapLat', 41.39), ('planner_mapLng', 2.17), "
            "('planner_obstacleToggle', False), ('planner_timezone', 'Asia/Kathmandu')]");
  EXPECT_EQ(python("plistlib.loads(p['planner_observer'])['$objects'][1]['position_latitude']"),
            "41.39");
  const auto archive = defaults().dataForKey("planner_observer");
  ASSERT_TRUE(archive);
  const auto observer = VTObserver::unarchivedObserver(*archive);
  ASSERT_TRUE(observer);
  EXPECT_EQ(observer->coordinate().longitude, 2.17);
  EXPECT_FALSE(observer->isAltitudeValid());
}

TEST_F(PlannerHandOffTest, KeepsPanelAndMilkyWayAsIntegers) {
  TodayUtils::setCurrentPlannerPanelIndex(-3);
  TodayUtils::setPlannerMilkyWayVisible(true);
  EXPECT_EQ(python("p['planner_infoWindowPage'], p['planner_milkyWayLayerState']"), "-3 1");
  TodayUtils::setPlannerMilkyWayVisible(false);
  EXPECT_EQ(python("p['planner_milkyWayLayerState'] is False or p['planner_milkyWayLayerState']"),
            "0");
}

TEST_F(PlannerHandOffTest, ALayerIsHiddenWhenItsArchiveDoesNotTell) {
  for (const bool told : {true, false}) {
    KeyedArchiver archiver;
    const auto root = archiver.addObject({MapLayerState::kClassName, "NSObject"});
    if (told) MapLayerState().encodeWithCoder(root);
    const auto archive =
        KeyedUnarchiver::unarchiverWithData(archiver.archivedDataWithRootObject(root));
    ASSERT_TRUE(archive);
    EXPECT_EQ(archive->root().className(), "MapLayerState");
    EXPECT_EQ(MapLayerState::initWithCoder(archive->root()).isVisible(), told);
  }
}

}  // namespace
}  // namespace vantrel
