#include "geo/PinLocation.h"

#include <cmath>

#include "support/SharedSettings.h"

namespace vantrel {
namespace {

using PinLocationTest = test::SharedSettings;

TEST_F(PinLocationTest, AltitudesReadInTheCurrentSystem) {
  constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();
  struct Case {
    std::int32_t system;
    float altitude;
    const char* text;
  };
  // Feet: Python, int(abs(v) * 3.2808399200439453 + 0.5) with the sign of v.
  const Case cases[] = {
      {0, 123, "123m"},
      {0, 12.5f, "13m"},
      {0, -12.5f, "-13m"},
      // Rounded once, not by the increment first.
      {0, 123.4996f, "123m"},
      {0, 12345.6f, "12346m"},
      // A rounded metre keeps its sign, a rounded foot does not.
      {0, -0.3f, "-0m"},
      {1, -0.1f, "0ft"},
      {1, -10, "-33ft"},
      {1, 0.15f, "0ft"},
      {1, 0.16f, "1ft"},
      {1, 8848.86f, "29032ft"},
      // Only 1 is imperial for altitudes.
      {2, 12.5f, "13m"},
      {0, -32768, "--m"},
      {0, -32767, "-32767m"},
      {0, -2147483648.0f, "--m"},
      {0, 0x1p-126f, "--m"},
      {0, std::nextafterf(0x1p-126f, 1), "0m"},
      // Sentinels are not converted, feet are clamped.
      {1, -2147483648.0f, "--ft"},
      {1, 1e9f, "2147483647ft"},
      {1, kNotANumber, "0ft"},
  };
  const PinLocation pin;
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.system << ": " << c.altitude);
    DistanceUnitsManager::sharedInstance().setCurrentUnits(c.system);
    EXPECT_EQ(pin.stringForAltitude(c.altitude), c.text);
  }
}

TEST_F(PinLocationTest, AnUnknownAltitudeStaysWhatItIs) {
  PinLocation pin;
  EXPECT_FALSE(pin.isAltitudeValid());
  pin.setAltitudeOffset(20);
  EXPECT_EQ(pin.totalAltitude(), -2147483648.0f);
  EXPECT_EQ(pin.altitudeString(), "--m");
  pin.setAltitude(-32768);
  EXPECT_EQ(pin.totalAltitude(), -32768);
  pin.setAltitude(100.25f);
  EXPECT_EQ(pin.totalAltitude(), 120.25f);
  pin.setAltitudeAccuracy(-2);
  EXPECT_FALSE(pin.isAltitudeSetManually());
  pin.setAltitudeAccuracy(-1);
  EXPECT_TRUE(pin.isAltitudeSetManually());
}

}  // namespace
}  // namespace vantrel
