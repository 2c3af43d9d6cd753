#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "cli/SettingsFile.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using test::isOneLine;
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
  const std::string archive = "plistlib.loads(p['planner_observer'])";
  EXPECT_EQ(python("(lambda a: [(o['position_latitude'], o['position_longitude'], "
                   "o['altitude_altitude'], a['$objects'][o['$class']]['$classname']) "
                   "for o in [a['$objects'][a['$top']['root']]]])(" +
                   archive + ")"),
            "[(41.39, -0.25, -2147483648.0, 'VTObserver')]");

  const auto planner = json::parse(vantrel({"planner", "show", "--json"}).output);
  EXPECT_EQ(planner["observer"]["latitude"], 41.39);
  EXPECT_EQ(planner["date"], "2026-07-15T21:40:00Z");
  EXPECT_EQ(planner["localDate"], "2026-07-15T23:40:00+02:00");
  EXPECT_EQ(planner["panel"], 2);
  EXPECT_EQ(planner["milkyWayVisible"], false);
  EXPECT_EQ(planner["pinLatitude"], 1.5);
  EXPECT_EQ(planner["pinLongitude"], nullptr);
  const std::string text = vantrel({"planner", "show"}).output;
  for (const char* line : {"41.39000, -0.25000\n", "2026-07-15 23:40\n", "Milky way  hidden\n"}) {
    EXPECT_THAT(text, HasSubstr(line));
  }
}

TEST_F(PlannerCommands, RefuseWhatIsNoPlace) {
  const std::vector<std::vector<std::string>> usage = {
      {"preset", "--latitude", "1", "--longitude", "2"},
      {"preset", "--latitude", "90.1", "--longitude", "2", "--date", "now"},
      {"preset", "--latitude", "1", "--longitude", "nan", "--date", "now"},
      {"preset", "--latitude", "1", "--longitude", "2", "--date", "then"},
      {"panel"},
      {"panel", "one"},
      {"panel", "1", "2"},
      {"milky-way", "maybe"},
  };
  for (auto command : usage) {
    command.insert(command.begin(), "planner");
    const auto result = vantrel(command);
    EXPECT_EQ(result.exitCode, 64) << command.back();
    EXPECT_TRUE(isOneLine(result.errors)) << result.errors;
  }
  EXPECT_EQ(json::parse(vantrel({"planner", "show", "--json"}).output)["observer"], nullptr);
  EXPECT_FALSE(fs::exists(container()));
}

}  // namespace
}  // namespace vantrel
