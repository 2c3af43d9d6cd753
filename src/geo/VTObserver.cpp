#include "geo/VTObserver.h"

#include <algorithm>

#include "base/StringFormat.h"
#include "defaults/PlannerKeys.h"
#include "defaults/VantrelUserDefaults.h"
#include "platform/system/Bundle.h"
#include "units/DistanceUnitsManager.h"

namespace vantrel {

namespace {

constexpr std::string_view kClassName = "VTObserver";

constexpr std::string_view kLatitudeKey = "position_latitude";
constexpr std::string_view kLongitudeKey = "position_longitude";
constexpr std::string_view kHorizonLatitudeKey = "altitude_latitude";
constexpr std::string_view kHorizonLongitudeKey = "altitude_longitude";
constexpr std::string_view kAltitudeKey = "altitude_altitude";
constexpr std::string_view kAltitudeOffsetKey = "altitude_offset";
constexpr std::string_view kAltitudeAccuracyKey = "altitude_accuracy";
constexpr std::string_view kAltitudeAtHorizonKey = "altitude_altitudeAtHorizon";
constexpr std::string_view kAdjustKey = "altitude_adjust_height_horizon";
/// Only in older archives; overrides kAltitudeAccuracyKey.
constexpr std::string_view kSetManuallyKey = "altitude_manual";

std::string localized(std::string_view key, std::string_view table) {
  return Bundle::mainBundle().localizedString(key, "", table);
}

}  // namespace

VTObserver::VTObserver() {
  const auto& defaults = VantrelUserDefaults::vantrelUserDefaults();
  setCoordinate({defaults.doubleForKey(kUserDefaultsPlannerPinCoordLat),
                 defaults.doubleForKey(kUserDefaultsPlannerPinCoordLng)});
}

VTObserver VTObserver::copyWithZone() const {
  VTObserver copy;
  copy.setCoordinate(coordinate());
  copy.setHorizonPosition(horizonPosition_);
  copy.setAltitude(altitude());
  copy.setAltitudeOffset(altitudeOffset());
  copy.setAltitudeAccuracy(altitudeAccuracy());
  copy.setAltitudeAtHorizon(altitudeAtHorizon_);
  copy.setAdjustForHeightAboveHorizon(adjustForHeightAboveHorizon_);
  return copy;
}

Expected<VTObserver> VTObserver::unarchivedObserver(std::span<const std::byte> data) {
  const auto archive = KeyedUnarchiver::unarchiverWithData(data);
  if (!archive) return tl::unexpected(archive.error());
  const auto root = archive->root();
  if (root.className() != kClassName) {
    return tl::unexpected(
        Error{"KeyedUnarchiver", 1, "The archive does not contain an observer.", {}});
  }
  auto observer = initWithCoder(root);
  if (archive->error()) return tl::unexpected(*archive->error());
  return observer;
}

Data VTObserver::archivedData() const {
  KeyedArchiver archiver;
  const auto root = archiver.addObject({std::string(kClassName), "PinLocation", "NSObject"});
  encodeWithCoder(root);
  return archiver.archivedDataWithRootObject(root);
}

void VTObserver::encodeWithCoder(KeyedArchiver::Object coder) const {
  coder.encodeDouble(coordinate().latitude, kLatitudeKey);
  coder.encodeDouble(coordinate().longitude, kLongitudeKey);
  coder.encodeDouble(horizonPosition_.latitude, kHorizonLatitudeKey);
  coder.encodeDouble(horizonPosition_.longitude, kHorizonLongitudeKey);
  coder.encodeFloat(altitude(), kAltitudeKey);
  coder.encodeFloat(altitudeOffset(), kAltitudeOffsetKey);
  coder.encodeInt32(altitudeAccuracy(), kAltitudeAccuracyKey);
  coder.encodeFloat(altitudeAtHorizon_, kAltitudeAtHorizonKey);
  coder.encodeBool(adjustForHeightAboveHorizon_, kAdjustKey);
}

VTObserver VTObserver::initWithCoder(const KeyedUnarchiver::Node& coder) {
  VTObserver observer{WithoutSettings()};
  observer.setCoordinate(
      {coder.decodeDoubleForKey(kLatitudeKey), coder.decodeDoubleForKey(kLongitudeKey)});
  observer.setHorizonPosition({coder.decodeDoubleForKey(kHorizonLatitudeKey),
                               coder.decodeDoubleForKey(kHorizonLongitudeKey)});
  observer.setAltitude(coder.decodeFloatForKey(kAltitudeKey));
  observer.setAltitudeAtHorizon(coder.decodeFloatForKey(kAltitudeAtHorizonKey));
  observer.setAltitudeOffset(coder.decodeFloatForKey(kAltitudeOffsetKey));
  observer.setAdjustForHeightAboveHorizon(coder.decodeBoolForKey(kAdjustKey));
  if (coder.containsValueForKey(kSetManuallyKey)) {
    observer.setAltitudeAccuracy(coder.decodeBoolForKey(kSetManuallyKey) ? kSetManually : 0);
  } else {
    observer.setAltitudeAccuracy(coder.decodeInt32ForKey(kAltitudeAccuracyKey));
  }
  return observer;
}

void VTObserver::resetHorizon() {
  adjustForHeightAboveHorizon_ = false;
  altitudeAtHorizon_ = kNoHorizonAltitude;
  horizonPosition_ = kLocationCoordinate2DInvalid;
}

float VTObserver::heightAboveHorizon() const {
  if (!isAltitudeValid() || altitudeAtHorizon_ == kNoHorizonAltitude ||
      altitudeAtHorizon_ == kUnknownAltitude) {
    return 0;
  }
  const std::int64_t ground = truncatedInt32(double{altitude()} + 0.5);
  const std::int64_t horizon =
      altitudeAtHorizon_ == kMissingAltitude ? 0 : truncatedInt32(double{altitudeAtHorizon_} + 0.5);
  return static_cast<float>(std::max(static_cast<std::int32_t>(ground - horizon), 0));
}

std::string VTObserver::heightAboveHorizonString() const {
  const float height = heightAboveHorizon();
  if (DistanceUnitsManager::sharedInstance().currentUnits() == DistanceUnitsManager::kImperial) {
    const float feet = height * kFeetPerMetre;
    return numberFormatter().stringFromNumber(truncatedInt32(double{feet} + 0.5)) +
           localized("unit_abbr_ft", "Common");
  }
  return numberFormatter().stringFromNumber(truncatedInt32(height)) +
         localized("unit_abbr_m", "Common");
}

std::string VTObserver::pinSubtitle() const {
  auto altitude = stringWithFormat(
      "%@: %@", {localized("planner_altitude_text", "Ephemeris"), altitudeString()});
  if (!adjustForHeightAboveHorizon_) return altitude;
  const auto height = stringWithFormat(
      "%@: %@", {localized("height_above_horizon", "Ephemeris"), heightAboveHorizonString()});
  return stringWithFormat("%@ | %@", {altitude, height});
}

ephemeris::PtPosition VTObserver::getPtPosition() const {
  return {coordinate().latitude, coordinate().longitude,
          isAltitudeValid() ? double{totalAltitude()} : 0,
          adjustForHeightAboveHorizon_ ? double{heightAboveHorizon()} : 0};
}

}  // namespace vantrel
