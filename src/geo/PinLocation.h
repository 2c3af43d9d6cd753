#pragma once

#include <cstdint>
#include <limits>
#include <string>

#include "base/LocationCoordinate2D.h"
#include "platform/text/NumberFormatter.h"

namespace vantrel {

/// Truncates toward zero. Out of range returns the nearest 32-bit integer; 0 for NaN.
std::int32_t truncatedInt32(double value);
/// Rounds half away from zero, otherwise like truncatedInt32().
std::int32_t roundedInt32(double value);

/// A map pin: a coordinate, the altitude of the ground and a height above it, in metres. Main
/// thread only.
class PinLocation {
 public:
  /// The three sentinels for "no altitude", compared exactly.
  static constexpr float kUnknownAltitude = -2147483648.0f;
  static constexpr float kMissingAltitude = -32768.0f;
  static constexpr float kNoHorizonAltitude = std::numeric_limits<float>::min();
  /// The accuracy code of an altitude that the user set by hand.
  static constexpr std::int32_t kSetManually = -1;
  static constexpr float kFeetPerMetre = 3.28084f;

  /// Creates a pin at (0, 0) without an altitude.
  PinLocation();
  virtual ~PinLocation() = default;

  LocationCoordinate2D coordinate() const { return coordinate_; }
  virtual void setCoordinate(LocationCoordinate2D coordinate) { coordinate_ = coordinate; }
  /// Altitude of the ground.
  float altitude() const { return altitude_; }
  void setAltitude(float altitude) { altitude_ = altitude; }
  /// Height of the pin above the ground.
  float altitudeOffset() const { return altitudeOffset_; }
  void setAltitudeOffset(float offset) { altitudeOffset_ = offset; }
  std::int32_t altitudeAccuracy() const { return altitudeAccuracy_; }
  void setAltitudeAccuracy(std::int32_t accuracy) { altitudeAccuracy_ = accuracy; }

  bool isAltitudeSetManually() const { return altitudeAccuracy_ == kSetManually; }
  /// Whether `altitude` is none of the three sentinels; true for NaN.
  static bool isValid(float altitude);
  bool isAltitudeValid() const { return isValid(altitude_); }
  /// Altitude plus offset; the sentinel without the offset if the altitude is not valid.
  float totalAltitude() const;

  /// Returns whole metres, or feet if the unit system is kImperial: "123m", "404ft"; "--m" for a
  /// sentinel.
  std::string stringForAltitude(float altitude) const;
  std::string altitudeString() const { return stringForAltitude(totalAltitude()); }

 protected:
  PinLocation(PinLocation&&) = default;
  PinLocation& operator=(PinLocation&&) = default;

  /// Shared by all texts of the pin: the fraction digits that one text sets remain for the next.
  NumberFormatter& numberFormatter() const { return numberFormatter_; }

 private:
  LocationCoordinate2D coordinate_;
  float altitude_ = kUnknownAltitude;
  float altitudeOffset_ = 0;
  std::int32_t altitudeAccuracy_ = 0;
  mutable NumberFormatter numberFormatter_;
};

}  // namespace vantrel
