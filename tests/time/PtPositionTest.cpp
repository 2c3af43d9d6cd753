#include "time/PtPosition.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vantrel::ephemeris {
namespace {

TEST(PtPosition, PlacesAnObserverFromTheEarthsCentre) {
  struct Case {
    const char* name;
    double latitude, altitude, rhoCosPhi, rhoSinPhi;
  };
  // ERFA's eraGd2gc for WGS 84 over 6378137 m; its axis ratio has more digits than ours.
  const Case cases[] = {
      {"equator", 0, 0, 1, 0},
      {"Barcelona", 41.39, 12, 0.751328080939, 0.657719100012},
      {"Sydney", -33.86, 58, 0.831273214065, -0.554016665710},
      {"on a high mountain", 27.988, 8849, 0.884922692703, 0.467140131539},
      {"near the pole", 89.9, 0, 0.001751199789, 0.996645661125},
      {"north pole", 90, 0, 0, 0.996647189335},
      {"south pole", -90, 2835, 0, -0.997091676495},
      {"below the sea", 31.5, -430, 0.853362892354, 0.519440448391},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const PtPosition position(c.latitude, 2.17, c.altitude, 30);
    EXPECT_NEAR(position.rhoCosPhi, c.rhoCosPhi, 2e-9);
    EXPECT_NEAR(position.rhoSinPhi, c.rhoSinPhi, 2e-9);
    EXPECT_NEAR(position.rho, std::hypot(c.rhoCosPhi, c.rhoSinPhi), 2e-9);
  }
  EXPECT_EQ(PtPosition(0, 0, 0, 0).rho, 1);
  PtPosition moved(0, 2.17, 0, 30);
  moved.latitude = 90;
  moved.CalcObserverCoords();
  EXPECT_EQ(moved.rhoSinPhi, 0.99664719);
  EXPECT_EQ(moved.longitude, 2.17);
  EXPECT_EQ(moved.heightAboveHorizon, 30);
}

}  // namespace
}  // namespace vantrel::ephemeris
