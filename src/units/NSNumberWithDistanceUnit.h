#pragma once

#include <string>

namespace vantrel {

/// A length in metres, or in feet if the unit system that is current when it is formatted is
/// imperial. A value. Main thread only.
class NSNumberWithDistanceUnit {
 public:
  static NSNumberWithDistanceUnit numberWithFloat(float value) {
    return NSNumberWithDistanceUnit(value);
  }
  float floatValue() const { return value_; }

  /// With one level, formats the number in the best unit, with at most `decimals` fraction digits
  /// (none if the unit allows none; inches with thirty-seconds): "999.9m", `3 19/32"`, "5280'".
  /// With more, formats integers of the best unit and the units below, and the remainder in the
  /// last one: "1km 250m", `5' 3 1/2"`; omits levels of 0 and carries. Halves round away from zero.
  /// Uses the current locale's digits without grouping, and one minus sign in front.
  std::string formattedValueWithNumberOfDecimals(int decimals, int unitsLevels) const;

 private:
  explicit NSNumberWithDistanceUnit(float value) : value_(value) {}
  float value_;
};

}  // namespace vantrel
