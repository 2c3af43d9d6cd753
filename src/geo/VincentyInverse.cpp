#include "geo/VincentyInverse.h"

#include <cmath>

namespace vantrel {

namespace {

// WGS 84.
constexpr double kSemiMajorAxis = 6378137.0;
constexpr double kFlattening = 0.0033528106647474805;
constexpr double kOneMinusFlattening = 0.9966471893352525;
constexpr double kSixteenthOfFlattening = 0.00020955066654671753;
constexpr double kEccentricitySquared = 0.0066943799901413165;
constexpr double kOneMinusEccentricitySquared = 0.9933056200098587;

constexpr int kMaxPasses = 20;
constexpr int kFirstPassToConverge = 2;
constexpr double kTolerance = 1e-13;

/// Sines and cosines of the pins' reduced latitudes, i.e. their latitudes on the auxiliary sphere.
struct ReducedLatitudes {
  double sinU1;
  double cosU1;
  double sinU2;
  double cosU2;
};

/// The triangle of both pins and the pole on the auxiliary sphere, for one longitude difference.
struct Triangle {
  double sinSqSigma = 0;
  double sinSigma = 0;
  double cosSigma = 0;
  double sigma = 0;
  double sinAlpha = 0;
  double cosSqAlpha = 0;
  double cos2SigmaM = 0;

  void setSides(const ReducedLatitudes& u, double sinLambda, double cosLambda) {
    const double east = u.cosU2 * sinLambda;
    const double north = u.cosU1 * u.sinU2 - u.sinU1 * u.cosU2 * cosLambda;
    sinSqSigma = east * east + north * north;
    sinSigma = std::sqrt(sinSqSigma);
    cosSigma = u.sinU1 * u.sinU2 + u.cosU1 * u.cosU2 * cosLambda;
    sigma = std::atan2(sinSigma, cosSigma);
    sinAlpha = sinSqSigma == 0 ? 0 : u.cosU1 * u.cosU2 * sinLambda / sinSigma;
  }

  void setEquatorialAzimuth(const ReducedLatitudes& u, double cosSquared) {
    cosSqAlpha = cosSquared;
    cos2SigmaM = cosSqAlpha == 0 ? 0 : cosSigma - 2 * u.sinU1 * u.sinU2 / cosSqAlpha;
  }

  /// Longitude difference on the sphere minus that on the ellipsoid.
  double longitudeExcess() const {
    const double c = kSixteenthOfFlattening * cosSqAlpha * (4 + kFlattening * (4 - 3 * cosSqAlpha));
    return (1 - c) * kFlattening * sinAlpha *
           (sigma + c * sinSigma * (cos2SigmaM + c * cosSigma * (2 * cos2SigmaM * cos2SigmaM - 1)));
  }

  /// Length of the geodesic on the ellipsoid with the semi-major axis `axis`.
  double arcLength(double axis) const {
    const double minor = axis * kOneMinusFlattening;
    const double uSq = cosSqAlpha * ((axis * axis - minor * minor) / (minor * minor));
    const double a = 1 + uSq / 16384 * (4096 + uSq * (-768 + uSq * (320 - 175 * uSq)));
    const double b = uSq / 1024 * (256 + uSq * (-128 + uSq * (74 - 47 * uSq)));
    const double deltaSigma =
        b * sinSigma *
        (cos2SigmaM + b / 4 *
                          (cosSigma * (2 * cos2SigmaM * cos2SigmaM - 1) -
                           b / 6 * cos2SigmaM * (4 * sinSigma * sinSigma - 3) *
                               (4 * cos2SigmaM * cos2SigmaM - 3)));
    return minor * a * (sigma - deltaSigma);
  }
};

/// Directions at both pins; the second points away from the first pin.
struct Directions {
  double east1;
  double north1;
  double east2;
  double north2;

  Directions(const ReducedLatitudes& u, double sinLambda, double cosLambda)
      : east1(u.cosU2 * sinLambda),
        north1(u.cosU1 * u.sinU2 - u.sinU1 * u.cosU2 * cosLambda),
        east2(u.cosU1 * sinLambda),
        north2(u.cosU1 * u.sinU2 * cosLambda - u.sinU1 * u.cosU2) {}

  double startAzimuth() const { return insideOneTurn(std::atan2(east1, north1)); }
  double endAzimuth() const { return insideOneTurn(std::atan2(east2, north2) + kPi); }

 private:
  static double insideOneTurn(double azimuth) {
    if (azimuth < 0) azimuth += 2 * kPi;
    return azimuth >= 2 * kPi ? azimuth - 2 * kPi : azimuth;
  }
};

GeodeticCurve curve(double alpha1, double alpha2, double distance, double elevation,
                    bool converged) {
  return {alpha1 * kDegrees, alpha2 * kDegrees, static_cast<float>(distance), elevation, converged};
}

/// Degrees. `arc` is the length of the geodesic, `alpha1` the azimuth at the first pin.
double plainElevation(const VincentyInverse& pins, double axis, double arc, double distance,
                      double alpha1) {
  const double sin1 = std::sin(pins.phi1);
  const double cos1 = std::cos(pins.phi1);
  const double sin2 = std::sin(pins.phi2);
  const double n1 = axis / std::sqrt(1 - kEccentricitySquared * squared(sin1));
  const double n2 = axis / std::sqrt(1 - kEccentricitySquared * squared(sin2));
  const double rho1 = (n1 + pins.h1) * cos1;
  const double rho2 = (n2 + pins.h2) * std::cos(pins.phi2);
  const double dx = rho2 * std::cos(pins.lambda2) - rho1 * std::cos(pins.lambda1);
  const double dy = rho2 * std::sin(pins.lambda2) - rho1 * std::sin(pins.lambda1);
  const double dz = (n2 * kOneMinusEccentricitySquared + pins.h2) * sin2 -
                    (n1 * kOneMinusEccentricitySquared + pins.h1) * sin1;
  const double up = dz * sin1 + cos1 * (dx * std::cos(pins.lambda1) + dy * std::sin(pins.lambda1));
  const double zenith = kPi / 2 - std::asin(up / distance);
  const double meridian =
      axis * kOneMinusEccentricitySquared / std::pow(1 - kEccentricitySquared * squared(sin1), 1.5);
  const double radius =
      n1 * meridian / (n1 * squared(std::cos(alpha1)) + meridian * squared(std::sin(alpha1)));
  return 90 - (zenith - arc / (14 * radius)) * kDegrees;
}

}  // namespace

GeodeticCurve VincentyInverse::plainCurve() const {
  const double u1 = std::atan(kOneMinusFlattening * std::tan(phi1));
  const double u2 = std::atan(kOneMinusFlattening * std::tan(phi2));
  const ReducedLatitudes u{std::sin(u1), std::cos(u1), std::sin(u2), std::cos(u2)};
  const double l = longitudeDifference();
  double lambda = l;
  Triangle triangle;
  bool converged = false;
  // On one meridian each pass computes 0 / 0, which never converges: one pass suffices.
  const int passes = l == 0 ? 1 : kMaxPasses;
  for (int pass = 0; pass < passes && !converged; ++pass) {
    triangle.setSides(u, std::sin(lambda), std::cos(lambda));
    triangle.setEquatorialAzimuth(u, squared(std::cos(std::asin(triangle.sinAlpha))));
    const double next = l + triangle.longitudeExcess();
    converged = pass >= kFirstPassToConverge && std::abs((next - lambda) / next) < kTolerance;
    lambda = next;
  }

  double alpha1 = -1;
  double alpha2 = -1;
  if (converged) {
    const Directions directions(u, std::sin(lambda), std::cos(lambda));
    alpha1 = directions.startAzimuth();
    alpha2 = directions.endAzimuth();
  } else if (phi1 > phi2) {
    alpha1 = kPi;
    alpha2 = 0;
  } else if (phi1 < phi2) {
    alpha1 = 0;
    alpha2 = kPi;
  }
  const double axis = enlargedAxis();
  const double arc = triangle.arcLength(axis);
  const double distance = slantDistance(arc);
  const double elevation = alpha1 > 0 ? plainElevation(*this, axis, arc, distance, alpha1) : 0;
  return curve(alpha1, alpha2, distance, elevation, converged);
}

// The fast form is equal to the plain one because
// - cos(asin x)² = 1 - x²;
// - (1 - f)² = 1 - e²: with w = sqrt(1 - e² sin² phi), which the radii of curvature need anyway,
// the
//   angle atan((1 - f) tan phi) has the cosine cos(phi) / w and the sine (1 - f) sin(phi) / w;
// - with longitudes counted from the first pin, one cosine replaces all their sines and cosines;
// - the passes search a fixed point. Up to an arc of 166 degrees each pass reduces the error at
// least
//   20 times, so 20 passes always converge. The secant method finds the same point, to far less
//   than 1e-12, in two or three passes.
//
// It returns `nullopt` for pairs where the rounding of the plain steps, or the pass they stop at,
// changes or decides the result: closer than 640 m, across a pole or the date line at a short
// distance, nearly antipodal, along a meridian, or out of range. All comparisons fail on NaN.
namespace {

constexpr double kMaxLatitude = 90.0 * kRadians;
constexpr double kMaxLongitude = 540.0 * kRadians;
constexpr double kMaxAltitude = 1e5;
constexpr double kMinSinSqSigma = 1e-8;
constexpr double kMinShareSquared = 1e-4;  // of the longitude difference
constexpr double kMinCosSigma = -0.97;
constexpr double kMinSinSqAzimuth = 1e-20;
constexpr double kMaxLastStep = 1e-9;
constexpr int kMaxQuickPasses = 6;

bool isInRange(const VincentyInverse& pins) {
  return std::abs(pins.phi1) <= kMaxLatitude && std::abs(pins.phi2) <= kMaxLatitude &&
         std::abs(pins.lambda1) <= kMaxLongitude && std::abs(pins.lambda2) <= kMaxLongitude &&
         std::abs(pins.h1) <= kMaxAltitude && std::abs(pins.h2) <= kMaxAltitude;
}

struct Solution {
  Triangle triangle;
  Directions directions;
};

std::optional<Solution> solveQuickly(const ReducedLatitudes& u, double l, double cosL) {
  double sinLambda = std::sin(l);
  double cosLambda = cosL;
  Triangle triangle;
  triangle.setSides(u, sinLambda, cosLambda);
  const double sinSqAlpha = squared(triangle.sinAlpha);
  if (!(triangle.sinSqSigma > kMinSinSqSigma &&
        triangle.sinSqSigma > kMinShareSquared * squared(l) && triangle.cosSigma > kMinCosSigma))
    return std::nullopt;
  triangle.setEquatorialAzimuth(u, 1 - sinSqAlpha);

  // The first step uses the derivative of sin(alpha) sigma, which is nearly all of the excess;
  // later steps use the secant through the last two passes.
  const double slope =
      sinSqAlpha + triangle.sigma *
                       (u.cosU1 * u.cosU2 * cosLambda - sinSqAlpha * triangle.cosSigma) /
                       triangle.sinSigma;
  double excess = 0;
  double residual = triangle.longitudeExcess();
  double step = residual / (1 - kFlattening * slope);
  for (int pass = 1; std::abs(step) >= kMaxLastStep; ++pass) {
    if (pass == kMaxQuickPasses) return std::nullopt;
    excess += step;
    sinLambda = std::sin(l + excess);
    cosLambda = std::cos(l + excess);
    triangle.setSides(u, sinLambda, cosLambda);
    triangle.setEquatorialAzimuth(u, 1 - squared(triangle.sinAlpha));
    const double last = residual;
    residual = triangle.longitudeExcess() - excess;
    step *= residual / (last - residual);
  }
  // The last step is so short that a linear update of sine and cosine is exact.
  triangle.sigma += triangle.sinAlpha * step;
  const Directions directions(u, sinLambda + step * cosLambda, cosLambda - step * sinLambda);
  if (!(squared(directions.east1) > kMinSinSqAzimuth * triangle.sinSqSigma &&
        squared(directions.east2) > kMinSinSqAzimuth * triangle.sinSqSigma))
    return std::nullopt;
  return Solution{triangle, directions};
}

}  // namespace

std::optional<GeodeticCurve> VincentyInverse::quickCurve() const {
  if (!isInRange(*this)) return std::nullopt;
  const double sin1 = std::sin(phi1);
  const double cos1 = std::cos(phi1);
  const double sin2 = std::sin(phi2);
  const double cos2 = std::cos(phi2);
  const double wSq1 = 1 - kEccentricitySquared * squared(sin1);
  const double oneByW1 = 1 / std::sqrt(wSq1);
  const double oneByW2 = 1 / std::sqrt(1 - kEccentricitySquared * squared(sin2));
  const double l = longitudeDifference();
  const double cosL = std::cos(l);
  const std::optional<Solution> solution =
      solveQuickly({kOneMinusFlattening * sin1 * oneByW1, cos1 * oneByW1,
                    kOneMinusFlattening * sin2 * oneByW2, cos2 * oneByW2},
                   l, cosL);
  if (!solution) return std::nullopt;

  const double axis = enlargedAxis();
  const double arc = solution->triangle.arcLength(axis);
  const double distance = slantDistance(arc);
  const double n1 = axis * oneByW1;
  const double n2 = axis * oneByW2;
  const double dx = (n2 + h2) * cos2 * cosL - (n1 + h1) * cos1;
  const double dz = (n2 * kOneMinusEccentricitySquared + h2) * sin2 -
                    (n1 * kOneMinusEccentricitySquared + h1) * sin1;
  const double sinElevation = (dz * sin1 + dx * cos1) / distance;
  const Directions& directions = solution->directions;
  const double meridian = n1 * kOneMinusEccentricitySquared / wSq1;
  const double curvature =
      (n1 * squared(directions.north1) + meridian * squared(directions.east1)) /
      (n1 * meridian * (squared(directions.north1) + squared(directions.east1)));
  const double elevation = (std::asin(sinElevation) + arc * curvature / 14) * kDegrees;
  return curve(directions.startAzimuth(), directions.endAzimuth(), distance, elevation, true);
}

double VincentyInverse::enlargedAxis() const {
  return kSemiMajorAxis + ((h1 + h2) / 2) * (1 + kFlattening * std::sin((phi1 + phi2) / 2));
}

double VincentyInverse::slantDistance(double arc) const {
  return std::sqrt(squared(arc) + squared(h2 - h1));
}

}  // namespace vantrel
