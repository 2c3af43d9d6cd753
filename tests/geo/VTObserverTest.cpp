#include "geo/VTObserver.h"

#include <cmath>

#include "support/Guards.h"
#include "support/SharedSettings.h"

namespace vantrel {
namespace {

class VTObserverTest : public test::SharedSettings {
 protected:
  /// Reads an archive written by Python's plistlib with these keys of the root object.
  static Expected<VTObserver> observerFromPython(const std::string& keys,
                                                 const std::string& className = "VTObserver") {
    const test::TemporaryDirectory directory;
    const auto made = test::runProgram(
        {"python3", "-c",
         "import plistlib, sys; U = plistlib.UID; keys = {" + keys +
             "}; keys['$class'] = U(2)\n"
             "plistlib.dump({'$version': 100000, '$archiver': 'NSKeyedArchiver',"
             " '$top': {'root': U(1)}, '$objects': ['$null', keys, {'$classname': '" +
             className + "', '$classes': ['" + className +
             "', 'NSObject']}]},"
             " open(sys.argv[1], 'wb'), fmt=plistlib.FMT_BINARY)",
         directory / "archive"});
    EXPECT_EQ(made.errors, "");
    const auto data = dataWithContentsOfURL(directory / "archive");
    if (!data) return tl::unexpected(data.error());
    return VTObserver::unarchivedObserver(*data);
  }
};

TEST_F(VTObserverTest, HeightsAboveTheHorizonAreWholeAndNeverNegative) {
  struct Case {
    const char* name;
    float altitude;
    float horizon;
    float height;
  };
  // Python: max(0, trunc(f32(a) + 0.5) - trunc(f32(h) + 0.5)).
  const Case cases[] = {
      {"horizon above", 100.4f, 180, 0},
      {"halves go up", 100.6f, 20.5f, 80},
      {"below zero, toward zero", -1.4f, -10.6f, 10},
      {"sum in 64 bits", 0.49999997f, -10, 9},
      {"missing horizon counts as sea level", 100.6f, -32768, 101},
      {"no horizon", 100, 0x1p-126f, 0},
      {"unknown horizon", 100, -2147483648.0f, 0},
      {"missing altitude", -32768, -40000, 0},
      {"out of range of whole metres", 3e9f, -3e9f, 0},
  };
  VTObserver observer;
  observer.setAltitudeOffset(50);
  observer.setAdjustForHeightAboveHorizon(true);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    observer.setAltitude(c.altitude);
    observer.setAltitudeAtHorizon(c.horizon);
    EXPECT_EQ(observer.heightAboveHorizon(), c.height);
    EXPECT_EQ(observer.getPtPosition().heightAboveHorizon, c.height);
  }
}

TEST_F(VTObserverTest, FormatsAltitudeAndHeightInTheCurrentSystem) {
  defaults().setDouble(41.39, "planner_pinCoordLat");
  defaults().setDouble(2.17, "planner_pinCoordLng");
  VTObserver observer;
  EXPECT_EQ(observer.coordinate().latitude, 41.39);
  EXPECT_EQ(observer.pinSubtitle(), "Altitude: --m");
  EXPECT_EQ(observer.getPtPosition().altitude, 0);

  observer.setAltitude(100.6f);
  observer.setAltitudeOffset(10.25f);
  observer.setAltitudeAtHorizon(20.5f);
  EXPECT_EQ(observer.pinSubtitle(), "Altitude: 111m");
  EXPECT_EQ(observer.getPtPosition().longitude, 2.17);
  EXPECT_EQ(observer.getPtPosition().altitude, 100.6f + 10.25f);
  EXPECT_EQ(observer.getPtPosition().heightAboveHorizon, 0);
  observer.setAdjustForHeightAboveHorizon(true);
  EXPECT_EQ(observer.pinSubtitle(), "Altitude: 111m | Height above horizon: 80m");
  // Python: int(f32(80 * 3.28084) + 0.5), and 110.85 m in feet.
  DistanceUnitsManager::sharedInstance().setCurrentUnits(1);
  EXPECT_EQ(observer.pinSubtitle(), "Altitude: 364ft | Height above horizon: 262ft");
  DistanceUnitsManager::sharedInstance().setCurrentUnits(2);
  EXPECT_EQ(observer.pinSubtitle(), "Altitude: 111m | Height above horizon: 80m");

  const auto copy = observer.copyWithZone();
  EXPECT_EQ(copy.archivedData(), observer.archivedData());
  observer.resetHorizon();
  EXPECT_FALSE(observer.isAltitudeAtHorizonValid());
  EXPECT_EQ(observer.pinSubtitle(), "Altitude: 111m");
  EXPECT_EQ(copy.pinSubtitle(), "Altitude: 111m | Height above horizon: 80m");
}

TEST_F(VTObserverTest, WritesArchivesThatPythonReads) {
  VTObserver observer;
  observer.setCoordinate({41.39, 2.17});
  observer.setAltitudeAccuracy(-1);
  const auto data = observer.archivedData();
  const std::string bytes(reinterpret_cast<const char*>(data.data()), data.size());
  const test::TemporaryDirectory directory;
  test::writeFile(directory / "archive", bytes);
  EXPECT_EQ(test::python(directory / "archive",
                         "p['$archiver'], p['$version'], p['$top'], p['$objects'][2],"
                         " sorted(p['$objects'][1].items())"),
            "NSKeyedArchiver 100000 {'root': UID(1)} {'$classname': 'VTObserver', '$classes': "
            "['VTObserver', 'PinLocation', 'NSObject']} [('$class', UID(2)), "
            "('altitude_accuracy', -1), ('altitude_adjust_height_horizon', False), "
            "('altitude_altitude', -2147483648.0), "
            "('altitude_altitudeAtHorizon', 1.1754943508222875e-38), "
            "('altitude_latitude', -180.0), ('altitude_longitude', -180.0), "
            "('altitude_offset', 0.0), ('position_latitude', 41.39), "
            "('position_longitude', 2.17)]");
  // Marker and big-endian content, as written by the phone.
  using namespace std::string_literals;
  for (const auto& form :
       {"\x23\x40\x44\xB1\xEB\x85\x1E\xB8\x52"s, "\x23\x40\x01\x5C\x28\xF5\xC2\x8F\x5C"s,
        "\x23\xC0\x66\x80\0\0\0\0\0"s, "\x22\xCF\0\0\0"s, "\x22\0\0\0\0"s, "\x22\0\x80\0\0"s,
        "\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s}) {
    EXPECT_NE(bytes.find(form), std::string::npos) << testing::PrintToString(form);
  }
  EXPECT_EQ(bytes.find("\x22\xC3\x34"), std::string::npos) << "-180 in 32 bits";
}

TEST_F(VTObserverTest, ReadsArchivesOfPythonAndRejectsOthers) {
  // All values differ, so that swapped keys are found.
  const std::string keys =
      "'position_latitude': 41.39, 'position_longitude': 2.17, 'altitude_latitude': -10.5,"
      " 'altitude_longitude': 7, 'altitude_altitude': 12.25, 'altitude_offset': 1.5,"
      " 'altitude_altitudeAtHorizon': 100.5, 'altitude_adjust_height_horizon': True";
  const std::pair<const char*, std::int32_t> accuracies[] = {
      {", 'altitude_accuracy': 5", 5},
      {", 'altitude_manual': True, 'altitude_accuracy': 5", -1},
      {", 'altitude_manual': False, 'altitude_accuracy': 5", 0},
      {"", 0},
  };
  for (const auto& [accuracyKeys, accuracy] : accuracies) {
    SCOPED_TRACE(accuracyKeys);
    const auto full = observerFromPython(keys + accuracyKeys);
    ASSERT_TRUE(full);
    EXPECT_EQ(full->altitudeAccuracy(), accuracy);
    const auto place = full->coordinate();
    const auto horizon = full->horizonPosition();
    EXPECT_EQ(
        (std::vector<double>{place.latitude, place.longitude, horizon.latitude, horizon.longitude,
                             full->altitude(), full->altitudeOffset(), full->altitudeAtHorizon()}),
        (std::vector<double>{41.39, 2.17, -10.5, 7, 12.25, 1.5, 100.5}));
    EXPECT_TRUE(full->adjustForHeightAboveHorizon());
  }
  // Missing keys are not read from the settings, and 0 is a valid altitude.
  defaults().setDouble(41.39, "planner_pinCoordLat");
  const auto empty = observerFromPython("");
  ASSERT_TRUE(empty);
  EXPECT_EQ(empty->coordinate().latitude, 0);
  EXPECT_EQ(empty->horizonPosition().latitude, 0);
  EXPECT_TRUE(empty->isAltitudeValid() && empty->isAltitudeAtHorizonValid());

  EXPECT_FALSE(VTObserver::unarchivedObserver(Data(100)));
  EXPECT_FALSE(observerFromPython("", "Obstacle"));
  EXPECT_FALSE(observerFromPython("'altitude_accuracy': 2 ** 40"));
  EXPECT_FALSE(observerFromPython("'position_latitude': U(0)"));
}

}  // namespace
}  // namespace vantrel
