#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "units/DistanceUnit.h"

namespace vantrel {

/// The two unit systems and the user's choice. Unit names are in the language that was current when
/// the manager was created. Main thread only.
class DistanceUnitsManager {
 public:
  static constexpr std::int32_t kMetric = 0;
  static constexpr std::int32_t kImperial = 1;

  static DistanceUnitsManager& sharedInstance();
  /// Reads the current system from the shared settings; metric by default.
  DistanceUnitsManager();

  /// Smallest first.
  const std::vector<DistanceUnit>& metricUnits() const { return metricUnits_; }
  const std::vector<DistanceUnit>& imperialUnits() const { return imperialUnits_; }
  /// The units of the current system: metric if it is kMetric, otherwise imperial.
  const std::vector<DistanceUnit>& units() const;

  std::int32_t currentUnits() const { return currentUnits_; }
  /// Saves the shared settings if `units` differs from currentUnits().
  void setCurrentUnits(std::int32_t units);

  /// Returns the index in units(), or -1 if no unit has that name.
  std::int32_t indexOfUnit(std::string_view name) const;
  /// Throws std::out_of_range if units() has no unit with that name.
  const DistanceUnit& unitWithName(std::string_view name) const;

  /// Returns the largest unit from `minUnit` to `maxUnit` (names; default: all units) in which
  /// `value`, in the current system's base unit, is at least 1; the smallest of them if there is
  /// none. Null if a name is unknown or `minUnit` is larger than `maxUnit`. Owned by the manager.
  const DistanceUnit* bestDistanceUnitForValue(
      float value, std::optional<std::string_view> minUnit = std::nullopt,
      std::optional<std::string_view> maxUnit = std::nullopt) const;

  /// The localised name of a unit system.
  static std::string distanceUnitToString(bool imperial);
  /// Returns the nearest thirty-second of an inch in lowest terms, "0" to "1"; halves round up.
  /// Values outside are clamped; NaN is "1".
  static const std::string& fractionInchesForValue(float value);

 private:
  std::int32_t currentUnits_;
  std::vector<DistanceUnit> metricUnits_;
  std::vector<DistanceUnit> imperialUnits_;
};

}  // namespace vantrel
