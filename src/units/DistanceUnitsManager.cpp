#include "units/DistanceUnitsManager.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "defaults/VantrelUserDefaults.h"
#include "platform/system/Bundle.h"

namespace vantrel {

namespace {

constexpr std::string_view kUnitsKey = "global_units";
constexpr float kFeetPerInch = 1.0f / 12.0f;

std::string common(std::string_view key) {
  return Bundle::mainBundle().localizedString(key, "", "Common");
}

std::vector<InchesFraction> makeInchesFractions() {
  constexpr int kParts = 32;
  std::vector<InchesFraction> fractions;
  for (int i = 0; i <= kParts; ++i) {
    const int divisor = std::gcd(i, kParts);
    std::string text = std::to_string(i / divisor);
    if (divisor != kParts) text += "/" + std::to_string(kParts / divisor);
    fractions.emplace_back(std::move(text), static_cast<float>(i) / kParts);
  }
  return fractions;
}

}  // namespace

DistanceUnitsManager& DistanceUnitsManager::sharedInstance() {
  static DistanceUnitsManager shared;
  return shared;
}

DistanceUnitsManager::DistanceUnitsManager()
    : currentUnits_(static_cast<std::int32_t>(
          VantrelUserDefaults::vantrelUserDefaults().integerForKey(kUnitsKey))),
      metricUnits_{{common("unit_abbr_mm"), std::nullopt, 0.001f, true},
                   {common("unit_abbr_cm"), std::nullopt, 0.01f, true},
                   {common("unit_abbr_m"), std::nullopt, 1.0f, true},
                   {common("unit_abbr_km"), std::nullopt, 1000.0f, true}},
      imperialUnits_{{common("unit_abbr_in"), "\"", kFeetPerInch, false},
                     {common("unit_abbr_ft"), "'", 1.0f, false},
                     {common("unit_abbr_mi"), std::nullopt, 5280.0f, false}} {}

const std::vector<DistanceUnit>& DistanceUnitsManager::units() const {
  return currentUnits_ == kMetric ? metricUnits_ : imperialUnits_;
}

void DistanceUnitsManager::setCurrentUnits(std::int32_t units) {
  if (units == currentUnits_) return;
  currentUnits_ = units;
  auto& defaults = VantrelUserDefaults::vantrelUserDefaults();
  defaults.setInteger(units, kUnitsKey);
  (void)defaults.synchronize();
}

std::int32_t DistanceUnitsManager::indexOfUnit(std::string_view name) const {
  const auto& all = units();
  const auto found = std::find_if(all.begin(), all.end(),
                                  [&](const DistanceUnit& unit) { return unit.name() == name; });
  return found == all.end() ? -1 : static_cast<std::int32_t>(found - all.begin());
}

const DistanceUnit& DistanceUnitsManager::unitWithName(std::string_view name) const {
  return units().at(static_cast<std::size_t>(indexOfUnit(name)));
}

const DistanceUnit* DistanceUnitsManager::bestDistanceUnitForValue(
    float value, std::optional<std::string_view> minUnit,
    std::optional<std::string_view> maxUnit) const {
  const auto& all = units();
  const std::int32_t lowest = minUnit ? indexOfUnit(*minUnit) : 0;
  const std::int32_t highest =
      maxUnit ? indexOfUnit(*maxUnit) : static_cast<std::int32_t>(all.size()) - 1;
  if (lowest == -1 || highest == -1 || lowest > highest) return nullptr;
  const auto first = all.begin() + lowest;
  const auto last = all.begin() + highest;
  const auto tooLarge = [value](const DistanceUnit& unit) { return value / unit.factor() < 1.0f; };
  if (tooLarge(*first)) return &*first;
  return &*(std::find_if(first + 1, last + 1, tooLarge) - 1);
}

std::string DistanceUnitsManager::distanceUnitToString(bool imperial) {
  return common(imperial ? "unit_distance_imperial_name" : "unit_distance_metrics_name");
}

const std::string& DistanceUnitsManager::fractionInchesForValue(float value) {
  static const std::vector<InchesFraction> fractions = makeInchesFractions();
  // Far outside the table, the distances to all rows are equal in single precision.
  const float clamped = std::clamp(value, 0.0f, 1.0f);
  const auto distance = [clamped](const InchesFraction& row) {
    return std::fabs(clamped - row.decimalValue());
  };
  // A tie selects the larger row; NaN selects the last.
  auto best = fractions.begin();
  while (best + 1 != fractions.end() && !(distance(*(best + 1)) > distance(*best))) ++best;
  return best->fraction();
}

}  // namespace vantrel
