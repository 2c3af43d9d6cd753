#pragma once

#include <cstdint>
#include <limits>
#include <string>

#include "base/LocationCoordinate2D.h"
#include "platform/text/NumberFormatter.h"

namespace vantrel {

inline constexpr float kFeetPerMetre = 3.28084f;

/// Truncates towards zero. Returns the nearest 32-bit integer for values out of range, 0 for NaN.
std::int32_t truncatedInt32(double value);

/// A map pin: a coordinate with the altitude of its ground and a height on top. Altitudes are
/// metres. Main thread.
class PinLocation {
 public:
  /// The three values that stand for "no altitude", compared exactly.
  static constexpr float kUnknownAltitude = -2147483648.0f;
  static constexpr float kMissingAltitude = -32768.0f;
  static constexpr float kNoHorizonAltitude = std::numeric_limits<float>::min();
  /// The accuracy of an altitude that the user set by hand.
  static constexpr std::int32_t kSetManually = -1;

  /// At (0, 0), without an altitude.
  PinLocation();
  virtual ~PinLocation() = default;

  LocationCoordinate2D coordinate() const { return coordinate_; }
  virtual void setCoordinate(LocationCoordinate2D coordinate) { coordinate_ = coordinate; }
  /// Of the ground.
  float altitude() const { return altitude_; }
  void setAltitude(float altitude) { altitude_ = altitude; }
  /// Of the pin above the ground.
  float altitudeOffset() const { return altitudeOffset_; }
  void setAltitudeOffset(float offset) { altitudeOffset_ = offset; }
  std::int32_t altitudeAccuracy() const { return altitudeAccuracy_; }
  void setAltitudeAccuracy(std::int32_t accuracy) { altitudeAccuracy_ = accuracy; }

  bool isAltitudeSetManually() const { return altitudeAccuracy_ == kSetManually; }
  /// Whether an altitude is none of the three marks. NaN is none of them.
  static bool isValid(float altitude);
  bool isAltitudeValid() const { return isValid(altitude_); }
  /// Altitude and offset together; an unknown altitude stays the mark it is.
  float totalAltitude() const;

  /// "123m", "404ft" or "--m": whole metres or feet as the current system has it.
  std::string stringForAltitude(float altitude) const;
  std::string altitudeString() const { return stringForAltitude(totalAltitude()); }

 protected:
  PinLocation(PinLocation&&) = default;
  PinLocation& operator=(PinLocation&&) = default;

  /// Every altitude text sets the digits it needs and leaves them.
  NumberFormatter& numberFormatter() const { return numberFormatter_; }

 private:
  LocationCoordinate2D coordinate_;
  float altitude_ = kUnknownAltitude;
  float altitudeOffset_ = 0;
  std::int32_t altitudeAccuracy_ = 0;
  mutable NumberFormatter numberFormatter_;
};

}  // namespace vantrel
