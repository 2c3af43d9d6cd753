#include "geo/Obstacle.h"

#include <cmath>

#include "geo/VTObserver.h"
#include "platform/system/Paths.h"
#include "support/Guards.h"
#include "support/SharedSettings.h"

namespace vantrel {
namespace {

class ObstacleTest : public test::SharedSettings {
 protected:
  /// At 0 degrees, 100 m.
  static VTObserver observer() {
    VTObserver observer;
    observer.setCoordinate({0, 0});
    observer.setAltitude(100);
    return observer;
  }
  /// Due east of the observer.
  static Obstacle obstacle(float altitude) {
    Obstacle obstacle;
    obstacle.setCoordinate({0, 0.01});
    obstacle.setAltitude(altitude);
    return obstacle;
  }
};

TEST_F(ObstacleTest, RoundsDifferencesBeforeConvertingThem) {
  struct Case {
    float altitude, difference;
    const char *metric, *imperial;
  };
  // Degrees in Python: the angle in a circle of 6378137 m between the pins' two radii, plus a
  // fourteenth of the angle at its centre.
  const Case cases[] = {
      {200.25f, 100, "100m | 5.14°", "328ft | 5.14°"},
      // 13 m, then 42.65 feet of those 13: not 41 of the 12.5.
      {112.5f, 13, "13m | 0.64°", "43ft | 0.64°"},
      {112.49998f, 12, "12m | 0.64°", "39ft | 0.64°"},
      {87.5f, -13, "-13m | -0.65°", "-43ft | -0.65°"},
      {100, 0, "0m | -0.00°", "0ft | -0.00°"},
      {99.75f, 0, "0m | -0.02°", "0ft | -0.02°"},
      {-32668, -32768, "--", "--"},
      {-32768, -32768, "--", "--"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.altitude);
    auto pin = obstacle(c.altitude);
    for (const auto system : {DistanceUnitsManager::kMetric, DistanceUnitsManager::kImperial}) {
      DistanceUnitsManager::sharedInstance().setCurrentUnits(system);
      pin.recalculateDataWithObserver(observer());
      EXPECT_EQ(pin.altitudeDifference(), c.difference);
      EXPECT_FALSE(std::signbit(pin.altitudeDifference()) && c.difference == 0);
      EXPECT_EQ(pin.altitudeOffsetString(), system == 0 ? c.metric : c.imperial);
    }
  }
}

TEST_F(ObstacleTest, FormatsBearingDistanceAndSubtitle) {
  auto pin = obstacle(200.25f);
  EXPECT_EQ(pin.pin2pinDistanceString(), "--");
  pin.recalculateDataWithObserver(observer());
  // echo 0 0 0 0.01 | GeodSolve -i
  EXPECT_FLOAT_EQ(pin.bearing(), 90);
  EXPECT_NEAR(pin.pin2pinDistance(), 1113.195, 0.001);
  EXPECT_EQ(pin.pin2pinDistanceString(), "1.1km");
  EXPECT_EQ(pin.pinSubtitle(), "Altitude: 200m | Offset: 100m/5.14°");

  // Altitude texts do not change until recalculated, the distance is formatted anew. For distances
  // every other number is imperial, for altitudes only 1.
  DistanceUnitsManager::sharedInstance().setCurrentUnits(2);
  EXPECT_EQ(pin.pin2pinDistanceString(), "3652'");
  DistanceUnitsManager::sharedInstance().setCurrentUnits(1);
  EXPECT_EQ(pin.pinSubtitle(), "Altitude: 200m | Offset: 100m/5.14°");
  pin.recalculateDataWithObserver(observer());
  EXPECT_EQ(pin.pinSubtitle(), "Altitude: 657ft | Offset: 328ft/5.14°");

  pin.setAltitude(100);
  pin.recalculateDataWithObserver(observer());
  EXPECT_EQ(pin.pinSubtitle(), "Altitude: 328ft | Offset: 0ft/-0.0°");
  pin.recalculateDataWithObserver(VTObserver());
  EXPECT_EQ(pin.pinSubtitle(), "Altitude: 328ft | Offset: --");

  // Unknown while the pin is being placed.
  pin.setJustDropped(true);
  pin.recalculateDataWithObserver(observer());
  EXPECT_EQ(pin.bearing(), -1);
  EXPECT_EQ(pin.elevation(), 0);
  EXPECT_EQ(pin.altitudeOffsetString(), "--");
  EXPECT_EQ(pin.pinSubtitle(), "Altitude: -- | Offset: --");
  pin.setCoordinate({0, 0});
  pin.recalculateDataWithObserver(observer());
  EXPECT_EQ(pin.bearing(), -57.29578f) << "no direction to the observer's own place";
  EXPECT_EQ(pin.pin2pinDistance(), 0);
  EXPECT_EQ(pin.pin2pinDistanceString(), "0\"");
}

TEST_F(ObstacleTest, ReadsTheSettings) {
  const Obstacle inTheGulfOfGuinea;
  EXPECT_EQ(inTheGulfOfGuinea.coordinate().latitude, 0);
  EXPECT_TRUE(inTheGulfOfGuinea.isAltitudeValid());
  EXPECT_EQ(inTheGulfOfGuinea.pinSubtitle(), "Altitude: -- | Offset: --");
  struct Case {
    double latitude, longitude;
    bool placed;
  };
  for (const auto& c : {Case{41.39, 2.17, true}, Case{-180, 10, false}, Case{10, -180, false},
                        Case{-180.0000001, 10, false}}) {
    SCOPED_TRACE(c.latitude);
    defaults().setDouble(c.latitude, "planner_obstacleLatitude");
    defaults().setDouble(c.longitude, "planner_obstacleLongitude");
    defaults().setInteger(-1, "planner_obstacleAltitudeAccuracy");
    Obstacle pin;
    EXPECT_EQ(pin.coordinate().latitude, c.latitude) << "as stored at first";
    EXPECT_TRUE(pin.isAltitudeSetManually());
    pin.setJustDropped(true);
    pin.setAltitude(7);
    EXPECT_EQ(pin.refreshFromUserDefaults(), c.placed);
    EXPECT_EQ(pin.justDropped(), !c.placed);
    EXPECT_EQ(pin.altitude(), c.placed ? 0 : 7);
    // Python: struct.unpack("f", struct.pack("f", 41.39)).
    EXPECT_EQ(pin.coordinate().latitude, c.placed ? 41.38999938964844 : c.latitude);
  }
}

TEST_F(ObstacleTest, SavesForOtherReaders) {
  auto pin = obstacle(0.1f);
  pin.setAltitudeOffset(1.5f);
  pin.setAltitudeAccuracy(-1);
  pin.toggle();
  EXPECT_TRUE(pin.isVisible());
  EXPECT_EQ(defaults().dictionaryRepresentation().count(), 0u);
  pin.saveToUserDefaults();
  EXPECT_EQ(
      test::python(*paths::groupContainer() / "Library/Preferences/group.vantrel.vantrel.plist",
                   "sorted((k[16:], v) for k, v in p.items())"),
      "[('Altitude', 0.10000000149011612), ('AltitudeAccuracy', -1), "
      "('AltitudeOffset', 1.5), ('Latitude', 0.0), ('Longitude', 0.01), ('Toggle', True)]");
}

TEST_F(ObstacleTest, HeightAboveTerrainNeedsBothAltitudes) {
  auto pin = obstacle(150);
  pin.recalculateDataWithObserver(observer());
  double distance = 0;
  // Python: 100 + 1113.195 * tan(5 degrees) + 1113.195**2 / 2 / 6378137 - 150.
  EXPECT_NEAR(pin.calculateHeightAboveTerrainWithSunMoonElevation(5, 100, distance), 47.49, 0.1);
  // An observer's altitude counts in single precision.
  EXPECT_EQ(pin.calculateHeightAboveTerrainWithSunMoonElevation(5, -32768.0001, distance), -32768);
  pin.setAltitude(0x1p-126f);
  distance = 0;
  EXPECT_EQ(pin.calculateHeightAboveTerrainWithSunMoonElevation(5, 100, distance), -32768);
  // Python: 1113.195 / cos(5 degrees), on a plane.
  EXPECT_NEAR(distance, 1117.45, 0.5);
}

}  // namespace
}  // namespace vantrel
