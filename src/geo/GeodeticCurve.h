#pragma once

namespace vantrel {

/// The geodesic between two pins, computed by GeodeticCalculator. An immutable value; angles are
/// degrees, lengths metres.
class GeodeticCurve {
 public:
  GeodeticCurve(double startAzimuth, double endAzimuth, float distance, double apparentElevation,
                bool converged)
      : startAzimuth_(startAzimuth),
        endAzimuth_(endAzimuth),
        distance_(static_cast<double>(distance)),
        apparentElevation_(apparentElevation),
        converged_(converged) {}

  /// Azimuth at the source towards the destination, 0 to 360; -57.29577951308232 if there is no
  /// direction (see GeodeticCalculator).
  double startAzimuth() const { return startAzimuth_; }
  /// Azimuth at the destination back towards the source, like startAzimuth().
  double endAzimuth() const { return endAzimuth_; }
  /// Slant distance in single precision: 1 m is its resolution beyond 8,400 km.
  double distance() const { return distance_; }
  /// Elevation of the destination above the source's horizon, with refraction; 0 for a destination
  /// exactly north and if there is no direction.
  double apparentElevation() const { return apparentElevation_; }
  /// False for pairs on one meridian (whose azimuths 0 and 180 are exact nevertheless), identical
  /// points, NaN, and nearly antipodal pairs, whose azimuths only show which point is farther
  /// north.
  bool converged() const { return converged_; }

 private:
  double startAzimuth_;
  double endAzimuth_;
  double distance_;
  double apparentElevation_;
  bool converged_;
};

}  // namespace vantrel
