#pragma once

#include <optional>

#include "geo/GeodeticCurve.h"

namespace vantrel {

inline constexpr double kPi = 3.14159265358979323846;
inline constexpr double kRadians = 0.017453292519943295;  ///< Per degree.
inline constexpr double kDegrees = 57.29577951308232;     ///< Per radian.

constexpr double squared(double x) {
  return x * x;
}

/// Vincenty's inverse method between two pins, in radians and metres, in two arrangements that give
/// the same curve. What it answers where, GeodeticCalculator tells.
struct VincentyInverse {
  double phi1;
  double lambda1;
  double h1;
  double phi2;
  double lambda2;
  double h2;

  /// Step by step, for every pair.
  GeodeticCurve plainCurve() const;
  /// At less than half the cost; nothing for the one or two pairs in a hundred that need the plain
  /// steps. They agree in the distance but for the last bit of single precision, and within 1e-8
  /// degrees.
  std::optional<GeodeticCurve> quickCurve() const;

 private:
  double longitudeDifference() const { return lambda2 - lambda1; }
  double enlargedAxis() const;
  double slantDistance(double arc) const;
};

}  // namespace vantrel
