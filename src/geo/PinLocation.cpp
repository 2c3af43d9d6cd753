#include "geo/PinLocation.h"

#include <cmath>

#include "platform/system/Bundle.h"
#include "units/DistanceUnitsManager.h"

namespace vantrel {

std::int32_t truncatedInt32(double value) {
  using Limits = std::numeric_limits<std::int32_t>;
  if (std::isnan(value)) return 0;
  if (value <= Limits::min()) return Limits::min();
  if (value >= Limits::max()) return Limits::max();
  return static_cast<std::int32_t>(value);
}

std::int32_t roundedInt32(double value) {
  const std::int32_t magnitude = truncatedInt32(std::fabs(value) + 0.5);
  return value < 0 ? -magnitude : magnitude;
}

PinLocation::PinLocation() {
  numberFormatter_.setRoundingMode(NumberFormatter::RoundingMode::kHalfUp);
  numberFormatter_.setUsesGroupingSeparator(false);
  numberFormatter_.setMinimumIntegerDigits(1);
  numberFormatter_.setRoundingIncrement(0.001);
}

bool PinLocation::isValid(float altitude) {
  return altitude != kUnknownAltitude && altitude != kMissingAltitude &&
         altitude != kNoHorizonAltitude;
}

float PinLocation::totalAltitude() const {
  return isAltitudeValid() ? altitude_ + altitudeOffset_ : altitude_;
}

std::string PinLocation::stringForAltitude(float altitude) const {
  numberFormatter_.setMaximumFractionDigits(0);
  numberFormatter_.setMinimumFractionDigits(0);
  const bool imperial =
      DistanceUnitsManager::sharedInstance().currentUnits() == DistanceUnitsManager::kImperial;
  const auto unit =
      Bundle::mainBundle().localizedString(imperial ? "unit_abbr_ft" : "unit_abbr_m", "", "Common");
  if (!isValid(altitude)) return "--" + unit;
  return numberFormatter_.stringFromNumber(
             imperial ? roundedInt32(double{altitude} * double{kFeetPerMetre}) : double{altitude}) +
         unit;
}

}  // namespace vantrel
