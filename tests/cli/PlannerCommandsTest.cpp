#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "cli/SettingsFile.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;

using PlannerCommands = test::SettingsTest;

TEST_F(PlannerCommands, HandOverWhatAnotherReaderFindsToTheBit) {
  dump("{'planner_obstacleToggle': True, 'planner_pinCoordLat': 1.5, 'other': 'kept'}",
       "FMT_BINARY", settings());
  expectQuiet({"planner", "preset", "--latitude", "41.39", "--longitude", "-.25", "--date",
               "2026-07-15 23:40"});
  expectQuiet({"planner", "panel", "2"});
  expectQuiet({"planner", "milky-way", "off"});
  EXPECT_EQ(python("'\\n'.join(f'{k} {p[k]!r}' for k in sorted(p) if k != 'planner_observer')"),
            "other 'kept'\n"
            "planner_date datetime.datetime(2026, 7, 15, 21, 40)\n"
            "planner_infoWindowPage 2\n"
            "planner_mapLat 41.39\n"
            "planner_mapLng -0.25\n"
            "planner_milkyWayLayerState 0\n"
            "planner_obstacleToggle False\n"
            "planner_pinCoordLat 1.5\n"
            "planner_timezone 'Europe/Madrid'");
  const auto planner = json::parse(run({"planner", "show", "--json"}).output);
  EXPECT_EQ(planner["observer"]["latitude"], 41.39);
  EXPECT_EQ(planner["date"], "2026-07-15T21:40:00Z");
  EXPECT_EQ(planner["localDate"], "2026-07-15T23:40:00+02:00");
  EXPECT_EQ(planner["panel"], 2);
  EXPECT_EQ(planner["milkyWayVisible"], false);
  EXPECT_EQ(planner["pinLatitude"], 1.5);
  EXPECT_EQ(planner["pinLongitude"], nullptr);
  const std::string text = run({"planner", "show"}).output;
  for (const char* line : {"41.39000, -0.25000\n", "2026-07-15 23:40\n", "Milky way  hidden\n"}) {
    EXPECT_THAT(text, HasSubstr(line));
  }
}

TEST_F(PlannerCommands, RefuseWhatIsNoPlace) {
  expectRefused({"planner", "preset", "--latitude", "1", "--longitude", "2"});
  expectRefused({"planner", "preset", "--latitude", "90.1", "--longitude", "2", "--date", "now"});
  expectRefused({"planner", "preset", "--latitude", "1", "--longitude", "nan", "--date", "now"});
  expectRefused({"planner", "preset", "--latitude", "1", "--longitude", "2", "--date", "then"});
  expectRefused({"planner", "panel"});
  expectRefused({"planner", "panel", "one"});
  expectRefused({"planner", "milky-way", "maybe"});
  EXPECT_EQ(json::parse(run({"planner", "show", "--json"}).output)["observer"], nullptr);
  EXPECT_FALSE(fs::exists(container()));
}

}  // namespace
}  // namespace vantrel
