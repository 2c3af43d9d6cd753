#pragma once

#include "base/LocationCoordinate2D.h"
#include "geo/GeodeticCurve.h"

namespace vantrel {

/// Geometry between two pins on the WGS 84 ellipsoid. Angles are degrees, lengths metres. Stateless
/// and thread-safe. No argument is rejected; what is computed from a NaN is NaN, except where
/// noted.
class GeodeticCalculator {
 public:
  /// Computes azimuths, slant distance and apparent elevation by Vincenty's inverse method (Survey
  /// Review 23, 1975) with at most 20 passes, on an ellipsoid enlarged by the pins' mean altitude,
  /// with a terrestrial refraction of 1/7. Latitudes are -90 to 90; longitudes may exceed 180.
  ///
  /// If the passes do not converge, the azimuths are 180 and 0 from north to south, 0 and 180 from
  /// south to north, and both -57.29577951308232 at equal latitudes (identical points). The
  /// elevation is 0 if the start azimuth is not positive. So for a NaN latitude only the distance
  /// is NaN: the azimuths are -57.29577951308232 and the elevation is 0.
  GeodeticCurve geodeticCurveBetweenSource(LocationCoordinate2D source, double sourceAltitude,
                                           LocationCoordinate2D destination,
                                           double destinationAltitude) const;

  /// Returns the distance from the earth's centre to the ellipsoid at a geodetic latitude.
  double calculateEarthRadiusForLatitude(double latitude) const;

  /// Returns the height above the black pin (the object) at which the line of sight from the red
  /// pin (the observer) to the sun or moon passes. Sets `distanceToObject` to the length of that
  /// line.
  double calculateHeightAboveTerrainWithPin2PinDistance(double distance, double earthRadius,
                                                        double sunMoonElevation,
                                                        double redPinAltitude,
                                                        double blackPinAltitude,
                                                        double& distanceToObject) const;

  /// Returns the elevation at which the red pin sees a point `apparentHeight` above the black pin.
  /// At distance 0: 90 or -90, or NaN if the point is the red pin itself.
  double calculateElevationAboveTerrainWithPin2PinDistance(double distance, double earthRadius,
                                                           double apparentHeight,
                                                           double redPinAltitude,
                                                           double blackPinAltitude) const;
};

}  // namespace vantrel
