#pragma once

#include "base/LocationCoordinate2D.h"
#include "geo/GeodeticCurve.h"

namespace vantrel {

/// Geometry between two pins on the WGS 84 ellipsoid. Angles are degrees, lengths metres. Keeps no
/// state: any thread may use one object. Nothing is refused: a NaN comes out as NaN.
class GeodeticCalculator {
 public:
  /// Azimuths, slant distance and apparent elevation, by Vincenty's inverse method (Survey Review
  /// 23, 1975) with at most 20 passes, on an ellipsoid enlarged by the pins' mean altitude; the
  /// elevation has a terrestrial refraction of 1/7. Latitudes -90 to 90, longitudes in whole turns
  /// as they come.
  ///
  /// Where the passes do not settle (`converged()` is false) the azimuths are 180 and 0 when the
  /// source lies north of the destination, 0 and 180 when south, and -57.29577951308232 both at one
  /// latitude (identical points). There is no elevation (0) for a start azimuth of 0 or below.
  GeodeticCurve geodeticCurveBetweenSource(LocationCoordinate2D source, double sourceAltitude,
                                           LocationCoordinate2D destination,
                                           double destinationAltitude) const;

  /// Distance from the earth's centre to the ellipsoid at a geodetic latitude.
  double calculateEarthRadiusForLatitude(double latitude) const;

  /// Height above the terrain of the black pin (the object) at which the line of sight from the red
  /// pin (the observer) to the sun or moon passes over it. `distanceToObject` receives the length
  /// of that line.
  double calculateHeightAboveTerrainWithPin2PinDistance(double distance, double earthRadius,
                                                        double sunMoonElevation,
                                                        double redPinAltitude,
                                                        double blackPinAltitude,
                                                        double& distanceToObject) const;

  /// Elevation angle at which the red pin sees a point `apparentHeight` above the black pin's
  /// terrain; 90 or -90 for a distance of 0, NaN when the height is 0 as well.
  double calculateElevationAboveTerrainWithPin2PinDistance(double distance, double earthRadius,
                                                           double apparentHeight,
                                                           double redPinAltitude,
                                                           double blackPinAltitude) const;
};

}  // namespace vantrel
