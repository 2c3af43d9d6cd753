#pragma once

namespace vantrel {

/// The geodesic between two pins as GeodeticCalculator finds it. An immutable value; angles are
/// degrees, lengths metres.
class GeodeticCurve {
 public:
  GeodeticCurve(double startAzimuth, double endAzimuth, float distance, double apparentElevation,
                bool converged);

  /// Azimuth at the source towards the destination, 0 to 360; -57.29577951308232 where there is no
  /// direction (see GeodeticCalculator).
  double startAzimuth() const { return startAzimuth_; }
  /// Azimuth at the destination back towards the source, as startAzimuth().
  double endAzimuth() const { return endAzimuth_; }
  /// Slant distance. Widened from single precision, so steps grow to 1 m beyond 8,400 km.
  double distance() const { return distance_; }
  /// Elevation of the destination above the source's horizon, refraction included; 0 for a
  /// destination exactly north and where there is no direction.
  double apparentElevation() const { return apparentElevation_; }
  /// False where the iteration never settled: pairs on one meridian, whose azimuths 0 and 180 are
  /// exact all the same; identical points; and pairs too close to antipodal, whose azimuths only
  /// say which point is farther north.
  bool converged() const { return converged_; }

 private:
  double startAzimuth_;
  double endAzimuth_;
  double distance_;
  double apparentElevation_;
  bool converged_;
};

}  // namespace vantrel
