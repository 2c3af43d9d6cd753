#pragma once

#include <string>

namespace vantrel {

/// A length in the base unit of the current system (metres, or feet) that can be told as text. A
/// value; the system is the one current when the text is made. Main thread.
class NSNumberWithDistanceUnit {
 public:
  static NSNumberWithDistanceUnit numberWithFloat(float value) {
    return NSNumberWithDistanceUnit(value);
  }
  float floatValue() const { return value_; }

  /// With one level, the number in the best unit with at most `decimals` fraction digits (none
  /// where the unit allows none; inches as whole and thirty-seconds), the symbol directly behind:
  /// "999.9m", `3 19/32"`, "5280'". With more, whole numbers of the units from the best one down
  /// and the rest in the last: "1km 250m", `5' 3 1/2"`; levels that are zero are left out, and a
  /// rest that rounds to one of the next unit counts as that. Halves go up, away from zero. The
  /// current locale's digits, not grouped; a negative length carries one sign in front.
  std::string formattedValueWithNumberOfDecimals(int decimals, int unitsLevels) const;

 private:
  explicit NSNumberWithDistanceUnit(float value) : value_(value) {}
  float value_;
};

}  // namespace vantrel
