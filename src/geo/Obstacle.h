#pragma once

#include <string>

#include "geo/GeodeticCalculator.h"
#include "geo/PinLocation.h"

namespace vantrel {

class VTObserver;

/// The planner's second pin: a summit or a building, seen from the observer. What is derived from
/// the two is computed by recalculateDataWithObserver() and kept, texts included, until the next
/// call. Main thread.
class Obstacle : public PinLocation {
 public:
  static constexpr float kUnknownDistance = -1;
  static constexpr float kUnknownBearing = -1;
  static constexpr float kUnknownDifference = kMissingAltitude;
  /// A latitude or longitude in the settings that stands for "no obstacle".
  static constexpr float kNotPlaced = -180;

  /// As the shared settings have it, the marks of kNotPlaced included.
  Obstacle();
  Obstacle(Obstacle&&) = default;
  Obstacle& operator=(Obstacle&&) = default;

  bool isVisible() const { return isVisible_; }
  void setIsVisible(bool visible) { isVisible_ = visible; }
  /// Saves nothing.
  void toggle() { isVisible_ = !isVisible_; }
  /// While the pin is being placed nothing derived is told.
  bool justDropped() const { return justDropped_; }
  void setJustDropped(bool dropped) { justDropped_ = dropped; }
  /// The pin is placed by this.
  void setCoordinate(LocationCoordinate2D coordinate) override;

  /// Takes position and altitude from the shared settings; false, and nothing changes, when there
  /// is no obstacle. The coordinate comes in single precision, as both programs have always had it.
  bool refreshFromUserDefaults();
  void saveToUserDefaults() const;

  void recalculateDataWithObserver(const VTObserver& observer);
  /// Azimuth from the observer, degrees.
  float bearing() const { return justDropped_ ? kUnknownBearing : bearing_; }
  /// Apparent elevation seen by the observer, degrees; 0 when unknown.
  float elevation() const { return altitudeDifferenceDegree_; }
  /// Along the surface from the observer, metres; negative when unknown.
  float pin2pinDistance() const { return pin2pinDistance_; }
  /// Whole metres above the observer; kUnknownDifference when unknown.
  float altitudeDifference() const { return altitudeDifference_; }
  const std::string& altitudeDifferenceString() const { return altitudeDifferenceString_; }

  /// "1.2km", "5280'" or "--".
  std::string pin2pinDistanceString() const;
  /// "13m | 0.72°" or "--".
  std::string altitudeOffsetString() const;
  /// "Altitude: 100m | Offset: 13m/0.72°".
  std::string pinSubtitle() const;
  /// Metres above the obstacle's terrain at which the observer sees sun or moon over it;
  /// kUnknownDifference when an altitude is unknown. `redPinAltitude` is the observer's.
  /// `distanceToObject` receives the length of the line of sight in any case.
  double calculateHeightAboveTerrainWithSunMoonElevation(double sunMoonElevation,
                                                         double redPinAltitude,
                                                         double& distanceToObject) const;

 private:
  std::string degrees() const;

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
