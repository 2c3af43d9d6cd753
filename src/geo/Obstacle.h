#pragma once

#include <string>

#include "geo/GeodeticCalculator.h"
#include "geo/PinLocation.h"

namespace vantrel {

class VTObserver;

/// The planner's second pin: a summit or a building, seen from the observer. The values that depend
/// on the observer, and the texts of altitudes, are computed by recalculateDataWithObserver() and
/// do not change until its next call. Main thread only.
class Obstacle : public PinLocation {
 public:
  static constexpr float kUnknownDistance = -1;
  static constexpr float kUnknownBearing = -1;
  static constexpr float kUnknownDifference = kMissingAltitude;
  /// A latitude or longitude in the settings that means "no obstacle".
  static constexpr float kNotPlaced = -180;

  /// Reads the shared settings, without checking for kNotPlaced.
  Obstacle();
  Obstacle(Obstacle&&) = default;
  Obstacle& operator=(Obstacle&&) = default;

  bool isVisible() const { return isVisible_; }
  void setIsVisible(bool visible) { isVisible_ = visible; }
  /// Inverts isVisible(). Does not save.
  void toggle() { isVisible_ = !isVisible_; }
  /// Set while the user places the pin: bearing, difference and texts are unknown.
  bool justDropped() const { return justDropped_; }
  void setJustDropped(bool dropped) { justDropped_ = dropped; }
  /// Also clears justDropped().
  void setCoordinate(LocationCoordinate2D coordinate) override;

  /// Reads position and altitude from the shared settings, the coordinate in single precision, and
  /// clears justDropped(). Returns false and changes nothing if they have no obstacle.
  bool refreshFromUserDefaults();
  void saveToUserDefaults() const;

  void recalculateDataWithObserver(const VTObserver& observer);
  /// Azimuth from the observer, degrees.
  float bearing() const { return justDropped_ ? kUnknownBearing : bearing_; }
  /// Apparent elevation seen by the observer, degrees; 0 if unknown.
  float elevation() const { return altitudeDifferenceDegree_; }
  /// Distance from the observer along the surface, metres; kUnknownDistance if unknown.
  float pin2pinDistance() const { return pin2pinDistance_; }
  /// Whole metres above the observer; kUnknownDifference if unknown.
  float altitudeDifference() const { return altitudeDifference_; }
  const std::string& altitudeDifferenceString() const { return altitudeDifferenceString_; }

  /// "1.2km", "5280'", or "--" if unknown; in the current unit system.
  std::string pin2pinDistanceString() const;
  /// "13m | 0.72°", or "--" if unknown.
  std::string altitudeOffsetString() const;
  /// "Altitude: 100m | Offset: 13m/0.72°", with "--" for what is unknown.
  std::string pinSubtitle() const;
  /// Returns the metres above the obstacle at which the observer sees the sun or moon over it;
  /// kUnknownDifference if an altitude is unknown. `redPinAltitude` is the observer's. Always sets
  /// `distanceToObject` to the length of the line of sight.
  double calculateHeightAboveTerrainWithSunMoonElevation(double sunMoonElevation,
                                                         double redPinAltitude,
                                                         double& distanceToObject) const;

 private:
  std::string degrees() const;
  void readAltitudeFromUserDefaults();

  bool isVisible_ = false;
  bool justDropped_ = false;
  GeodeticCalculator geodeticCalculator_;
  float pin2pinDistance_ = kUnknownDistance;
  float bearing_ = kUnknownBearing;
  float altitudeDifference_ = kUnknownDifference;
  std::string altitudeDifferenceString_ = "--";
  float altitudeDifferenceDegree_ = 0;
  std::string altitudeString_ = "--";
  double earthRadius_ = 6378137.0;
};

}  // namespace vantrel
