#include "geo/GeodeticCalculator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "geo/VincentyInverse.h"

namespace vantrel {
namespace {

constexpr double kNoDirection = -57.29577951308232;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Pair {
  LocationCoordinate2D from;
  double h1;
  LocationCoordinate2D to;
  double h2;
};

GeodeticCurve curveOf(const Pair& p) {
  return GeodeticCalculator().geodeticCurveBetweenSource(p.from, p.h1, p.to, p.h2);
}

/// Equal up to the last bit of single precision.
bool isSameFloat(double a, double b) {
  const auto x = static_cast<float>(a);
  const auto y = static_cast<float>(b);
  return x == y || std::nextafter(x, y) == y;
}

TEST(GeodeticCalculator, AgreesWithOtherPrograms) {
  struct Case {
    const char* name;
    Pair pair;
    double startAzimuth, endAzimuth, distance, apparentElevation;
  };
  // Azimuths and arc: GeodSolve 2.1.2, -i -e with the enlarged axis; height over the source's
  // horizon: CartConvert -l on the same ellipsoid; slant distance and refraction: mpmath.
  const Case cases[] = {
      // clang-format off
      {"Barcelona to Montserrat", {{41.3874, 2.1686}, 12, {41.6053, 1.8119}, 1236}, 309.2126470742, 128.9763066641, 38400.385896, 1.678815060},
      {"valley to Half Dome", {{37.7456, -119.5936}, 1209, {37.7459, -119.5332}, 2695}, 89.6231325807, 269.6601069640, 5528.533210, 15.571644276},
      {"half a kilometre", {{47.5576, 10.7498}, 800, {47.5612, 10.7531}, 800}, 31.8179100206, 211.8203453458, 471.103605, -0.001814452},
      {"down to the Dead Sea", {{31.7683, 35.2137}, 754, {31.559, 35.4732}, -430}, 133.2515878134, 313.3878080046, 33848.131964, -2.135006957},
      {"London to Sydney", {{51.5074, -0.1278}, 0, {-33.8688, 151.2093}, 0}, 60.3616857002, 319.2926330122, 16989295.770540, -34.178198827},
      {"over the date line", {{-17.7134, 178.065}, 0, {-13.8333, -171.7667}, 0}, 69.9340953144, 247.1616445125, 1170783.495391, -4.502497753},
      {"past 180 degrees", {{-17.7134, 178.065}, 0, {-13.8333, 188.2333}, 0}, 69.9340953144, 247.1616445125, 1170783.495391, -4.502497753},
      {"beside the north pole", {{89.5, 10}, 0, {89.5, -150}, 0}, 349.9996269026, 10.0003730974, 109997.026708, -0.422054208},
      {"beside the south pole", {{-89.9, 0}, 2835, {-80, 90}, 100}, 90.5671681721, 180.5759167426, 1117140.605408, -4.420269523},
      {"across the equator", {{0.5, 0}, 0, {-0.5, 120}, 0}, 90.2853654601, 270.2853654601, 13358614.258833, -37.170054761},
      {"balloon", {{10, 20}, 0, {12, 25}, 90000}, 67.4953921452, 248.4501707841, 600433.334091, 6.322597420},
      {"178 degrees away", {{-41.2865, 174.7762}, 0, {40.4168, -3.7038}, 0}, 226.5036861417, 134.2752229198, 19854610.375957, -27.155557673},
      // clang-format on
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const GeodeticCurve curve = curveOf(c.pair);
    EXPECT_TRUE(curve.converged());
    EXPECT_NEAR(curve.startAzimuth(), c.startAzimuth, 1e-8);
    EXPECT_NEAR(curve.endAzimuth(), c.endAzimuth, 1e-8);
    EXPECT_NEAR(curve.apparentElevation(), c.apparentElevation, 1e-8);
    EXPECT_TRUE(isSameFloat(curve.distance(), c.distance)) << curve.distance();
    EXPECT_EQ(curve.distance(), static_cast<float>(curve.distance()));
  }
}

TEST(GeodeticCalculator, HandlesPairsThatDoNotConverge) {
  struct Case {
    const char* name;
    Pair pair;
    double startAzimuth, endAzimuth;
    double distance;  // GeodSolve -i for pairs on one meridian; NaN: not checked
    bool hasElevation;
  };
  const Case cases[] = {
      {"identical", {{41.39, 2.17}, 5, {41.39, 2.17}, 5}, kNoDirection, kNoDirection, 0, false},
      {"one above the other", {{1, 2}, 10, {1, 2}, 35}, kNoDirection, kNoDirection, 25, false},
      {"due north", {{10, 20}, 0, {50, 20}, 0}, 0, 180, 4434992.208, false},
      {"due south", {{50, 20}, 0, {10, 20}, 0}, 180, 0, 4434992.208, true},
      {"from pole to pole", {{90, 0}, 0, {-90, 0}, 0}, 180, 0, 20003931.459, true},
      {"antipodes, equator", {{0, 0}, 0, {0, 180}, 0}, kNoDirection, kNoDirection, kNaN, false},
      {"antipodes, from north", {{30, 0}, 0, {-30, 179.9}, 0}, 180, 0, kNaN, true},
      {"antipodes, from south", {{-30, 0}, 0, {30, 179.9}, 0}, 0, 180, kNaN, false},
      {"no number", {{kNaN, 0}, 0, {1, 1}, 0}, kNoDirection, kNoDirection, kNaN, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const GeodeticCurve curve = curveOf(c.pair);
    EXPECT_FALSE(curve.converged());
    EXPECT_EQ(curve.startAzimuth(), c.startAzimuth);
    EXPECT_EQ(curve.endAzimuth(), c.endAzimuth);
    EXPECT_EQ(curve.apparentElevation() != 0, c.hasElevation);
    if (!std::isnan(c.distance)) {
      EXPECT_TRUE(isSameFloat(curve.distance(), c.distance)) << curve.distance();
    }
  }
  EXPECT_TRUE(std::isnan(curveOf({{kNaN, 0}, 0, {1, 1}, 0}).distance()));
  // Converge in pass 20 and in pass 21, counted in Python.
  EXPECT_TRUE(curveOf({{49.8, 0}, 0, {-50.5, 179.5}, 0}).converged());
  EXPECT_FALSE(curveOf({{-28, 0}, 0, {27.5, 179}, 0}).converged());
  // The distance of a pair that does not converge is 100 km shorter than the way over a pole.
  EXPECT_NEAR(curveOf({{0, 0}, 0, {0, 180}, 0}).distance(), 19903594, 2);
}

class RandomPairs {
 public:
  double between(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(generator_);
  }
  /// A power of ten with an exponent in the range, of either sign.
  double magnitude(double low, double high) {
    return std::copysign(std::pow(10, between(low, high)), between(-1, 1));
  }
  double latitude() { return std::asin(between(-1, 1)); }
  double longitude() { return between(-kPi, kPi); }
  double altitude() { return between(0, 1) < 0.5 ? between(-400, 8000) : magnitude(-6, 5); }
  VincentyInverse anywhere() {
    return {latitude(), longitude(), altitude(), latitude(), longitude(), altitude()};
  }
  /// Some 10^low to 10^high radians from the source, or from the point opposite.
  VincentyInverse apart(double low, double high, bool isOpposite = false) {
    VincentyInverse p = anywhere();
    p.phi2 = (isOpposite ? -p.phi1 : p.phi1) + magnitude(low, high);
    p.phi2 = std::clamp(p.phi2, -kPi / 2, kPi / 2);
    p.lambda2 = p.lambda1 + (isOpposite ? kPi : 0) + magnitude(low, high);
    return p;
  }
  static constexpr double kPi = 3.14159265358979323846;

 private:
  std::mt19937_64 generator_{20010101};
};

TEST(GeodeticCalculator, QuickCurveEqualsPlainCurve) {
  RandomPairs r;
  constexpr int kPairs = 30000;
  struct Kind {
    const char* name;
    std::function<VincentyInverse()> pair;
    int fewestAnswered;
  };
  const auto with = [](VincentyInverse p, double VincentyInverse::*field, double value) {
    p.*field = value;
    return p;
  };
  const Kind kinds[] = {
      {"globe", [&] { return r.anywhere(); }, kPairs * 98 / 100},
      {"any distance", [&] { return r.apart(-16, 0.3); }, 0},
      {"where it begins", [&] { return r.apart(-4.8, -3.3); }, 1000},
      {"any distance from opposite", [&] { return r.apart(-16, 0.3, true); }, 0},
      {"where it ends", [&] { return r.apart(-2.5, -0.5, true); }, 1000},
      {"over the date line",
       [&] {
         return with(with(r.apart(-4.8, -1.8), &VincentyInverse::lambda1, r.between(3.14, r.kPi)),
                     &VincentyInverse::lambda2, -r.between(3.14, r.kPi));
       },
       0},
      {"meridian",
       [&] {
         auto p = r.anywhere();
         p.lambda2 = p.lambda1 + r.kPi * std::round(r.between(-2, 2)) + r.magnitude(-18, -2);
         return p;
       },
       1000},
      {"equator",
       [&] {
         return with(with(r.anywhere(), &VincentyInverse::phi1, r.magnitude(-19, -2)),
                     &VincentyInverse::phi2, std::min(0.0, r.magnitude(-19, -2)));
       },
       1000},
      {"pole",
       [&] {
         const double latitude = r.kPi / 2 - std::abs(r.magnitude(-18, -1));
         return with(r.anywhere(), &VincentyInverse::phi1, latitude);
       },
       1000},
      {"steep", [&] { return with(r.apart(-10, -1), &VincentyInverse::h2, r.magnitude(3, 14)); },
       1000},
  };
  for (const auto& kind : kinds) {
    SCOPED_TRACE(kind.name);
    int answered = 0;
    for (int i = 0; i < kPairs; ++i) {
      const VincentyInverse p = kind.pair();
      const auto quick = p.quickCurve();
      if (!quick) continue;
      ++answered;
      const GeodeticCurve plain = p.plainCurve();
      ASSERT_TRUE(plain.converged() && isSameFloat(quick->distance(), plain.distance()) &&
                  std::abs(quick->startAzimuth() - plain.startAzimuth()) <= 1e-8 &&
                  std::abs(quick->endAzimuth() - plain.endAzimuth()) <= 1e-8 &&
                  std::abs(quick->apparentElevation() - plain.apparentElevation()) <= 1e-8)
          << std::hexfloat << p.phi1 << ' ' << p.lambda1 << ' ' << p.h1 << ' ' << p.phi2 << ' '
          << p.lambda2 << ' ' << p.h2;
    }
    EXPECT_GE(answered, kind.fewestAnswered);
  }
}

TEST(GeodeticCalculator, RelatesElevationAndHeightAboveTerrain) {
  struct Case {
    double distance, earthRadius, elevation, redAltitude, blackAltitude, height, distanceToObject;
  };
  // Where the line of sight meets the object's plumb line, solved as two linear equations by
  // mpmath.
  const Case cases[] = {
      {1000, 6378137, 0, 0, 0, 0.0783927979472991, 1000.00000819391},
      {5000, 6370000, 10, 100, 500, 483.733592217197, 5077.91661120857},
      {38400.386, 6368840.5, 1.5, 12, 1236, -102.491437413586, 38420.1533131607},
      {150000, 6371000, -0.5, 3000, 200, 3257.07092634998, 150073.242894036},
      {250, 6371000, 60, 0, 0, 433.047039717489, 500.0339856698},
      {2000, 6356752.3142, -5, 800, 0, 625.320120157276, 2007.83713549543},
  };
  const GeodeticCalculator calculator;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.distance);
    double distanceToObject = 0;
    EXPECT_NEAR(calculator.calculateHeightAboveTerrainWithPin2PinDistance(
                    c.distance, c.earthRadius, c.elevation, c.redAltitude, c.blackAltitude,
                    distanceToObject),
                c.height, 1e-7);
    EXPECT_NEAR(distanceToObject, c.distanceToObject, 1e-7);
    EXPECT_NEAR(calculator.calculateElevationAboveTerrainWithPin2PinDistance(
                    c.distance, c.earthRadius, c.height, c.redAltitude, c.blackAltitude),
                c.elevation, 1e-8);
  }
  EXPECT_EQ(calculator.calculateElevationAboveTerrainWithPin2PinDistance(0, 6371000, 5, 0, 0), 90);
  EXPECT_EQ(calculator.calculateEarthRadiusForLatitude(0), 6378137.0);
  EXPECT_EQ(calculator.calculateEarthRadiusForLatitude(90), 6356752.3142);
  // Length of the vector (N cos, N (1 - e2) sin) by mpmath.
  EXPECT_NEAR(calculator.calculateEarthRadiusForLatitude(-60), 6362132.2243634, 1e-6);
}

}  // namespace
}  // namespace vantrel
