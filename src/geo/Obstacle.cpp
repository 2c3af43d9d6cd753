#include "geo/Obstacle.h"

#include "base/StringFormat.h"
#include "defaults/PlannerKeys.h"
#include "defaults/VantrelUserDefaults.h"
#include "geo/VTObserver.h"
#include "platform/system/Bundle.h"
#include "units/DistanceUnitsManager.h"
#include "units/NSNumberWithDistanceUnit.h"

namespace vantrel {

namespace {

std::string label(std::string_view key) {
  return Bundle::mainBundle().localizedString(key, "", "Ephemeris");
}

}  // namespace

Obstacle::Obstacle() {
  const auto& defaults = VantrelUserDefaults::vantrelUserDefaults();
  setCoordinate({defaults.doubleForKey(kUserDefaultsPlannerObstacleLatitude),
                 defaults.doubleForKey(kUserDefaultsPlannerObstacleLongitude)});
  readAltitudeFromUserDefaults();
  isVisible_ = defaults.boolForKey(kUserDefaultsPlannerObstacleToggle);
}

void Obstacle::setCoordinate(LocationCoordinate2D coordinate) {
  PinLocation::setCoordinate(coordinate);
  justDropped_ = false;
}

bool Obstacle::refreshFromUserDefaults() {
  const auto& defaults = VantrelUserDefaults::vantrelUserDefaults();
  const float latitude = defaults.floatForKey(kUserDefaultsPlannerObstacleLatitude);
  const float longitude = defaults.floatForKey(kUserDefaultsPlannerObstacleLongitude);
  if (latitude == kNotPlaced || longitude == kNotPlaced) return false;
  setCoordinate({latitude, longitude});
  readAltitudeFromUserDefaults();
  return true;
}

void Obstacle::readAltitudeFromUserDefaults() {
  const auto& defaults = VantrelUserDefaults::vantrelUserDefaults();
  setAltitude(defaults.floatForKey(kUserDefaultsPlannerObstacleAltitude));
  setAltitudeOffset(defaults.floatForKey(kUserDefaultsPlannerObstacleAltitudeOffset));
  setAltitudeAccuracy(static_cast<std::int32_t>(
      defaults.integerForKey(kUserDefaultsPlannerObstacleAltitudeAccuracy)));
}

void Obstacle::saveToUserDefaults() const {
  auto& defaults = VantrelUserDefaults::vantrelUserDefaults();
  defaults.setDouble(coordinate().latitude, kUserDefaultsPlannerObstacleLatitude);
  defaults.setDouble(coordinate().longitude, kUserDefaultsPlannerObstacleLongitude);
  defaults.setFloat(altitude(), kUserDefaultsPlannerObstacleAltitude);
  defaults.setFloat(altitudeOffset(), kUserDefaultsPlannerObstacleAltitudeOffset);
  defaults.setInteger(altitudeAccuracy(), kUserDefaultsPlannerObstacleAltitudeAccuracy);
  defaults.setBool(isVisible_, kUserDefaultsPlannerObstacleToggle);
  (void)defaults.synchronize();
}

void Obstacle::recalculateDataWithObserver(const VTObserver& observer) {
  const auto surface =
      geodeticCalculator_.geodeticCurveBetweenSource(observer.coordinate(), 0, coordinate(), 0);
  bearing_ = static_cast<float>(surface.startAzimuth());
  pin2pinDistance_ = static_cast<float>(surface.distance());
  if (!justDropped_ && observer.isAltitudeValid() && isAltitudeValid()) {
    const auto curve = geodeticCalculator_.geodeticCurveBetweenSource(
        observer.coordinate(), observer.totalAltitude(), coordinate(), totalAltitude());
    altitudeDifference_ =
        static_cast<float>(roundedInt32(totalAltitude() - observer.totalAltitude()));
    altitudeDifferenceString_ = stringForAltitude(altitudeDifference_);
    altitudeDifferenceDegree_ = static_cast<float>(curve.apparentElevation());
  } else {
    altitudeDifference_ = kUnknownDifference;
    altitudeDifferenceString_ = "--";
    altitudeDifferenceDegree_ = 0;
  }
  altitudeString_ = isAltitudeValid() ? altitudeString() : "--";
  earthRadius_ =
      geodeticCalculator_.calculateEarthRadiusForLatitude(observer.coordinate().latitude);
}

std::string Obstacle::pin2pinDistanceString() const {
  if (!(pin2pinDistance_ >= 0)) return "--";
  const bool metric =
      DistanceUnitsManager::sharedInstance().currentUnits() == DistanceUnitsManager::kMetric;
  return NSNumberWithDistanceUnit::numberWithFloat(pin2pinDistance_ *
                                                   (metric ? 1.0f : kFeetPerMetre))
      .formattedValueWithNumberOfDecimals(1, 1);
}

std::string Obstacle::degrees() const {
  return numberFormatter().stringFromNumber(altitudeDifferenceDegree_) + "°";
}

std::string Obstacle::altitudeOffsetString() const {
  numberFormatter().setMinimumFractionDigits(2);
  numberFormatter().setMaximumFractionDigits(2);
  if (justDropped_ || altitudeDifference_ == kUnknownDifference) return "--";
  return stringWithFormat("%@ | %@", {altitudeDifferenceString_, degrees()});
}

std::string Obstacle::pinSubtitle() const {
  numberFormatter().setMaximumFractionDigits(0);
  const bool altitudeKnown = !justDropped_ && isAltitudeValid();
  const auto altitude = stringWithFormat(
      "%@: %@",
      {label("planner_altitude_text"), altitudeKnown ? altitudeString_ : std::string("--")});
  auto difference = std::string("--");
  if (!justDropped_ && altitudeDifference_ != kUnknownDifference) {
    numberFormatter().setMinimumFractionDigits(1);
    numberFormatter().setMaximumFractionDigits(2);
    difference = stringWithFormat("%@/%@", {altitudeDifferenceString_, degrees()});
  }
  const auto offset = stringWithFormat("%@: %@", {label("planner_altitude_offset"), difference});
  return stringWithFormat("%@ | %@", {altitude, offset});
}

double Obstacle::calculateHeightAboveTerrainWithSunMoonElevation(double sunMoonElevation,
                                                                 double redPinAltitude,
                                                                 double& distanceToObject) const {
  const bool known = isValid(static_cast<float>(redPinAltitude)) && isAltitudeValid();
  const double height = geodeticCalculator_.calculateHeightAboveTerrainWithPin2PinDistance(
      pin2pinDistance_, earthRadius_, sunMoonElevation, known ? redPinAltitude : 0,
      known ? double{totalAltitude()} : 0, distanceToObject);
  return known ? height : double{kUnknownDifference};
}

}  // namespace vantrel
