#include "units/NSNumberWithDistanceUnit.h"

#include <algorithm>
#include <cmath>

#include "platform/text/NumberFormatter.h"
#include "units/DistanceUnitsManager.h"

namespace vantrel {

namespace {

/// The resolution of inches.
constexpr double kPartsPerInch = 32;
/// More digits than single precision has.
constexpr int kMaxDecimals = 15;

/// Converts `value` from base units to `unit`. Factors below 1 approximate exact fractions (1/1000,
/// 1/12) in single precision: use the exact ones.
double quotient(double value, const DistanceUnit& unit) {
  const double factor = unit.factor();
  return factor < 1 ? value * std::round(1 / factor) : value / factor;
}

class Writer {
 public:
  Writer(const DistanceUnitsManager& manager, int decimals)
      : manager_(manager), decimals_(std::clamp(decimals, 0, kMaxDecimals)) {
    formatter_.setRoundingMode(NumberFormatter::RoundingMode::kHalfUp);
    formatter_.setUsesGroupingSeparator(false);
  }

  std::string sign() const { return formatter_.minusSign(); }

  std::string oneLevel(double value, std::size_t unit) {
    const double number = quotient(value, manager_.units()[unit]);
    const double parts = partsPerUnit(unit);
    return text(isInches(unit) ? std::round(number * parts) / parts : number, unit);
  }

  std::string levels(double value, std::size_t best, std::size_t count) {
    const auto& units = manager_.units();
    const std::size_t lowest = best + 1 - std::min(count, best + 1);
    // Round in the lowest unit first, so that carries propagate.
    const double parts = partsPerUnit(lowest);
    double remainder = std::round(quotient(value, units[lowest]) * parts);
    std::string result;
    for (std::size_t i = units.size(); i-- > lowest;) {
      const double size = parts * std::round(quotient(units[i].factor(), units[lowest]));
      const double below = i == lowest ? 0 : std::fmod(remainder, size);
      const double number = (remainder - below) / size;
      remainder = below;
      if (number == 0 && (i > lowest || !result.empty())) continue;
      if (!result.empty()) result += ' ';
      result += text(number, i);
    }
    return result;
  }

 private:
  bool isInches(std::size_t unit) const {
    return &manager_.units() == &manager_.imperialUnits() && unit == 0;
  }

  int decimals(std::size_t unit) const {
    return manager_.units()[unit].allowsDecimals() ? decimals_ : 0;
  }

  double partsPerUnit(std::size_t unit) const {
    return isInches(unit) ? kPartsPerInch : std::pow(10.0, decimals(unit));
  }

  std::string text(double number, std::size_t unit) {
    const std::string& symbol = manager_.units()[unit].abbrName();
    formatter_.setMaximumFractionDigits(decimals(unit));
    if (!isInches(unit)) return formatter_.stringFromNumber(number) + symbol;
    const double whole = std::floor(number);
    const auto& fraction =
        DistanceUnitsManager::fractionInchesForValue(static_cast<float>(number - whole));
    const auto slash = fraction.find('/');
    if (slash == std::string::npos) return formatter_.stringFromNumber(whole) + symbol;
    std::string result = whole > 0 ? formatter_.stringFromNumber(whole) + " " : std::string();
    result += formatter_.stringFromNumber(std::stoi(fraction.substr(0, slash))) + "/";
    return result + formatter_.stringFromNumber(std::stoi(fraction.substr(slash + 1))) + symbol;
  }

  const DistanceUnitsManager& manager_;
  NumberFormatter formatter_;
  int decimals_;
};

}  // namespace

std::string NSNumberWithDistanceUnit::formattedValueWithNumberOfDecimals(int decimals,
                                                                         int unitsLevels) const {
  const auto& manager = DistanceUnitsManager::sharedInstance();
  const float magnitude = std::fabs(value_);
  const auto best = static_cast<std::size_t>(manager.bestDistanceUnitForValue(magnitude) -
                                             manager.units().data());
  Writer writer(manager, decimals);
  const std::string sign = value_ < 0 ? writer.sign() : std::string();
  if (unitsLevels <= 1 || !std::isfinite(magnitude)) {
    return sign + writer.oneLevel(magnitude, best);
  }
  return sign + writer.levels(magnitude, best, static_cast<std::size_t>(unitsLevels));
}

}  // namespace vantrel
