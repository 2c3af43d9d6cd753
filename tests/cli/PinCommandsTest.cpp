#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "cli/SettingsFile.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;

class PinCommands : public test::SettingsTest {
 protected:
  json shown(const char* pin) const {
    const auto result = run({pin, "show", "--json"});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    return json::parse(result.output);
  }
  /// The nine values of the archived observer, by key, as plistlib reads them.
  std::string archived() const {
    return python(
        "(lambda a: [v for k, v in sorted(a['$objects'][a['$top']['root']].items()) if k[0] != "
        "'$'])(plistlib.loads(p['planner_observer']))");
  }
};

TEST_F(PinCommands, ChangeOnlyWhatIsGivenOfTheObserver) {
  dump("{'planner_pinCoordLat': 1.5, 'planner_pinCoordLng': -2.5}", "FMT_BINARY", settings());
  EXPECT_EQ(shown("observer")["stored"], false);
  EXPECT_EQ(shown("observer")["latitude"], 1.5);
  expectQuiet({"observer", "set", "--offset", "-.5"});
  // In the order of their keys: accuracy, adjust, altitude, horizon's altitude, latitude and
  // longitude, offset, place.
  EXPECT_EQ(archived(),
            "[0, False, -2147483648.0, 1.1754943508222875e-38, -180.0, -180.0, -0.5, 1.5, -2.5]");

  expectQuiet({"observer", "set", "--latitude", "41.39", "--altitude", "100.6", "--accuracy", "-1",
               "--horizon-latitude", "-90", "--horizon-longitude", "180", "--horizon-altitude",
               "20.5", "--adjust", "on"});
  EXPECT_EQ(archived(), "[-1, True, 100.5999984741211, 20.5, -90.0, 180.0, -0.5, 41.39, -2.5]");
  auto observer = shown("observer");
  EXPECT_EQ(observer["altitude"], 100.6);
  // 101 above 21.
  EXPECT_EQ(observer["heightAboveHorizon"], 80);
  EXPECT_EQ(observer["subtitle"], "Altitude: 100m | Height above horizon: 80m");
  expectQuiet({"defaults", "write", "global_units", "1", "--type", "int"});
  // 80 x 3.28084 = 262.5, half up.
  EXPECT_THAT(run({"observer", "show"}).output, HasSubstr("262ft"));

  expectQuiet({"observer", "set", "--no-horizon", "--no-altitude"});
  EXPECT_EQ(archived(),
            "[-1, False, -2147483648.0, 1.1754943508222875e-38, -180.0, -180.0, -0.5, 41.39, "
            "-2.5]");
  observer = shown("observer");
  for (const char* key : {"altitude", "totalAltitude", "horizonLatitude", "horizonAltitude"}) {
    EXPECT_EQ(observer[key], nullptr) << key;
  }
  EXPECT_EQ(python("sorted(p)"),
            "['global_units', 'planner_observer', 'planner_pinCoordLat', 'planner_pinCoordLng']");
}

TEST_F(PinCommands, ReadObserversThatAnotherProgramArchived) {
  // As text, references are dictionaries.
  dump(
      "{'planner_observer': dumps({'$version': 100000, '$archiver': 'NSKeyedArchiver', '$top': "
      "{'root': {'CF$UID': 1}}, '$objects': ['$null', {'$class': {'CF$UID': 2}, "
      "'position_latitude': 41.39, 'altitude_manual': True}, {'$classname': 'VTObserver', "
      "'$classes': ['VTObserver', 'NSObject']}]}, fmt=FMT_XML)}",
      "FMT_XML", settings());
  const auto observer = shown("observer");
  EXPECT_EQ(observer["latitude"], 41.39);
  EXPECT_EQ(observer["altitudeAccuracy"], -1);
  EXPECT_EQ(observer["horizonAltitude"], 0);
  for (const char* wrong : {"b'bplist00damaged'", "'text'"}) {
    dump(std::string("{'planner_observer': ") + wrong + "}", "FMT_BINARY", settings());
    const std::string before = test::readFile(settings());
    for (const char* pin : {"observer", "obstacle", "planner"}) expectRefused({pin, "show"}, 65);
    expectRefused({"observer", "set", "--altitude", "1"}, 65);
    EXPECT_EQ(test::readFile(settings()), before);
  }
}

TEST_F(PinCommands, SeeTheObstacleFromTheObserver) {
  expectQuiet({"observer", "set", "--latitude", "41.3851", "--longitude", "2.1734", "--altitude",
               "12", "--offset", "8.5"});
  expectQuiet({"obstacle", "set", "--latitude", "41.7712", "--longitude", "2.4390", "--altitude",
               "1706.6"});
  EXPECT_EQ(python("[p['planner_obstacle' + k] for k in ('Latitude', 'Longitude', 'Altitude', "
                   "'AltitudeOffset', 'AltitudeAccuracy', 'Toggle')]"),
            "[41.7712, 2.439, 1706.5999755859375, 0.0, 0, True]");
  const auto obstacle = shown("obstacle");
  // GeodSolve -i: 27.22959998 degrees, 48264.869 m. Elevation: Python, between WGS84's Cartesian
  // positions, plus a fourteenth of the angle at the centre for the refraction.
  EXPECT_NEAR(obstacle["bearing"], 27.2296, 0.002);
  EXPECT_NEAR(obstacle["distance"], 48264.87, 5);
  EXPECT_EQ(obstacle["altitudeDifference"], 1686);
  EXPECT_NEAR(obstacle["elevation"], 1.8144, 0.01);
  EXPECT_EQ(obstacle["distanceText"], "48.3km");
  EXPECT_EQ(obstacle["altitudeDifferenceText"], "1686m");
  expectQuiet({"defaults", "write", "global_units", "1", "--type", "int"});
  // 48264.87 m are 29.99 miles, 1686 m are 5531.5 ft.
  for (const char* text : {"27.23°\n", "30mi\n", "5531ft\n"}) {
    EXPECT_THAT(run({"obstacle", "show"}).output, HasSubstr(text));
  }

  // What is not given stays, in double precision.
  expectQuiet({"obstacle", "set", "--offset", "-.5", "--visible", "off"});
  expectQuiet({"obstacle", "toggle"});
  EXPECT_EQ(python("p['planner_obstacleLatitude'], p['planner_obstacleAltitudeOffset'], "
                   "p['planner_obstacleToggle']"),
            "41.7712 -0.5 True");
  // Without an altitude, and from the same point, there is nothing to tell.
  expectQuiet({"obstacle", "set", "--no-altitude", "--latitude", "0.5", "--longitude", "-180"});
  EXPECT_EQ(shown("obstacle")["longitude"], 180);
  expectQuiet({"observer", "set", "--latitude", "0.5", "--longitude", "180"});
  for (const char* key : {"bearing", "altitude", "altitudeDifference", "elevation"}) {
    EXPECT_EQ(shown("obstacle")[key], nullptr) << key;
  }

  expectQuiet({"obstacle", "clear"});
  EXPECT_EQ(python("p['planner_obstacleLatitude'], p['planner_obstacleLongitude'], "
                   "p['planner_obstacleAltitudeOffset']"),
            "-180.0 -180.0 -0.5");
  EXPECT_EQ(shown("obstacle")["placed"], false);
}

TEST_F(PinCommands, RefuseWhatIsNoPlaceOrHeight) {
  const std::vector<std::vector<std::string>> usage = {
      {"observer", "set"},
      {"observer", "set", "--latitude", "-90.001"},
      {"observer", "set", "--horizon-longitude", "inf"},
      {"observer", "set", "--horizon-latitude", "1"},
      {"observer", "set", "--altitude", "nan"},
      {"observer", "set", "--altitude", "1e39"},
      {"observer", "set", "--altitude", "-32768"},
      {"observer", "set", "--altitude", "1", "--no-altitude"},
      {"observer", "set", "--adjust", "on", "--no-horizon"},
      {"observer", "set", "--accuracy", "2147483648"},
      {"obstacle", "set"},
      {"obstacle", "set", "--latitude", "1"},
      {"obstacle", "set", "--latitude", "1", "--longitude", "180.1"},
      {"obstacle", "set", "--visible", "off"},
      {"obstacle", "toggle", "on"},
  };
  for (const auto& command : usage) expectRefused(command);
  EXPECT_EQ(run({"obstacle", "show"}).output, "No obstacle is placed.\n");
  const auto obstacle = shown("obstacle");
  EXPECT_EQ(obstacle["placed"], false);
  for (const char* key : {"latitude", "bearing", "distance", "distanceText", "subtitle"}) {
    EXPECT_EQ(obstacle[key], nullptr) << key;
  }
  EXPECT_FALSE(fs::exists(container()));
  expectQuiet({"obstacle", "toggle"});
  EXPECT_EQ(python("p"), "{'planner_obstacleToggle': True}");
  EXPECT_EQ(shown("obstacle")["placed"], false);
}

}  // namespace
}  // namespace vantrel
