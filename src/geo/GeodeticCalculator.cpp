#include "geo/GeodeticCalculator.h"

#include <cmath>

#include "geo/VincentyInverse.h"

namespace vantrel {

namespace {

// WGS 84; the radius at a latitude has a semi-minor axis rounded to a tenth of a millimetre.
constexpr double kRadiusMajor = 6378137.0;
constexpr double kRadiusMinor = 6356752.3142;
constexpr double kRadiusMajorSquared = 40680631590769.0;
constexpr double kRadiusMinorSquared = 40408299984087.055;

}  // namespace

GeodeticCurve GeodeticCalculator::geodeticCurveBetweenSource(LocationCoordinate2D source,
                                                             double sourceAltitude,
                                                             LocationCoordinate2D destination,
                                                             double destinationAltitude) const {
  const VincentyInverse pins{.phi1 = source.latitude * kRadians,
                             .lambda1 = source.longitude * kRadians,
                             .h1 = sourceAltitude,
                             .phi2 = destination.latitude * kRadians,
                             .lambda2 = destination.longitude * kRadians,
                             .h2 = destinationAltitude};
  const std::optional<GeodeticCurve> quick = pins.quickCurve();
  return quick ? *quick : pins.plainCurve();
}

double GeodeticCalculator::calculateEarthRadiusForLatitude(double latitude) const {
  const double cosine = std::cos(latitude * kRadians);
  const double sine = std::sin(latitude * kRadians);
  return std::sqrt((squared(kRadiusMajorSquared * cosine) + squared(kRadiusMinorSquared * sine)) /
                   (squared(kRadiusMajor * cosine) + squared(kRadiusMinor * sine)));
}

double GeodeticCalculator::calculateHeightAboveTerrainWithPin2PinDistance(
    double distance, double earthRadius, double sunMoonElevation, double redPinAltitude,
    double blackPinAltitude, double& distanceToObject) const {
  const double theta = distance / earthRadius;
  const double elevation = sunMoonElevation * kRadians;
  const double p = (earthRadius + redPinAltitude) * std::tan(theta);
  const double q = p * std::tan(elevation);
  const double k =
      q * std::cos(theta) + q * std::sin(theta) / std::tan(kPi / 2 - elevation - theta);
  distanceToObject = (p + std::sin(theta) * k) / std::cos(elevation);
  return (earthRadius + redPinAltitude) / std::cos(theta) - blackPinAltitude - earthRadius + k;
}

double GeodeticCalculator::calculateElevationAboveTerrainWithPin2PinDistance(
    double distance, double earthRadius, double apparentHeight, double redPinAltitude,
    double blackPinAltitude) const {
  const double theta = distance / earthRadius;
  const double drop =
      (earthRadius + redPinAltitude) / std::cos(theta) - redPinAltitude - earthRadius;
  const double v = apparentHeight - redPinAltitude + blackPinAltitude - drop;
  const double w = (earthRadius + redPinAltitude) * std::tan(theta) + std::sin(theta) * v;
  return std::atan(std::cos(theta) * v / w) * kDegrees;
}

}  // namespace vantrel
