#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "units/DistanceUnit.h"

namespace vantrel {

/// The two unit systems and the one that the user chose. Names keep the language that was current
/// when the manager was made. Main thread.
class DistanceUnitsManager {
 public:
  static constexpr std::int32_t kMetric = 0;
  static constexpr std::int32_t kImperial = 1;

  static DistanceUnitsManager& sharedInstance();
  /// Reads the chosen system from the shared settings.
  DistanceUnitsManager();

  /// Smallest first.
  const std::vector<DistanceUnit>& metricUnits() const { return metricUnits_; }
  const std::vector<DistanceUnit>& imperialUnits() const { return imperialUnits_; }
  /// Those of the current system: any other than kMetric is imperial.
  const std::vector<DistanceUnit>& units() const;

  std::int32_t currentUnits() const { return currentUnits_; }
  /// Another system than the current one is written to the shared settings at once.
  void setCurrentUnits(std::int32_t units);

  /// The position in units(), -1 when none has that name.
  std::int32_t indexOfUnit(std::string_view name) const;
  /// Throws std::out_of_range when units() has none of that name.
  const DistanceUnit& unitWithName(std::string_view name) const;

  /// The largest unit from `minUnit` to `maxUnit` (names; the whole list without) in which `value`,
  /// in the current system's base unit, is at least 1; the lowest one for smaller values. Null when
  /// a name is unknown or the two are in the wrong order. Owned by the manager.
  const DistanceUnit* bestDistanceUnitForValue(
      float value, std::optional<std::string_view> minUnit = std::nullopt,
      std::optional<std::string_view> maxUnit = std::nullopt) const;

  /// The localised name of a unit system.
  static std::string distanceUnitToString(bool imperial);
  /// The nearest thirty-second of an inch in lowest terms, "0" to "1"; a value halfway between two
  /// gives the larger. Values outside 0 to 1 give the nearer end.
  static const std::string& fractionInchesForValue(float value);

 private:
  std::int32_t currentUnits_;
  std::vector<DistanceUnit> metricUnits_;
  std::vector<DistanceUnit> imperialUnits_;
};

}  // namespace vantrel
