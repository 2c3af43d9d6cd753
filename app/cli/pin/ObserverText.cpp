#include "cli/pin/ObserverText.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "cli/plan/PlanText.h"
#include "common/ExitCode.h"
#include "common/TerminalText.h"
#include "defaults/PlannerKeys.h"

namespace vantrel::cli {

namespace {

bool hasHorizon(const VTObserver& observer) {
  const LocationCoordinate2D horizon = observer.horizonPosition();
  return horizon.latitude != kLocationCoordinate2DInvalid.latitude ||
         horizon.longitude != kLocationCoordinate2DInvalid.longitude;
}

/// Returns the height as "51m". `heightAboveHorizonString` formats it like the last altitude.
std::string heightText(const VTObserver& observer) {
  (void)observer.altitudeString();
  return observer.heightAboveHorizonString();
}

}  // namespace

Expected<StoredObserver> storedObserver(const UserDefaults& defaults) {
  const PropertyList stored = defaults.objectForKey(kUserDefaultsPlannerObserver);
  if (!stored) return StoredObserver{VTObserver(), false};
  const auto wrong = [](const std::string& why) {
    const std::string key(kUserDefaultsPlannerObserver);
    return tl::unexpected(
        failure(kExitBadData, key, why + " Remove it with vantrel defaults delete " + key));
  };
  const auto data = stored.asData();
  if (!data) return wrong("Not an archive.");
  auto observer = VTObserver::unarchivedObserver(*data);
  if (!observer) return wrong(observer.error().localizedDescription);
  return StoredObserver{std::move(*observer), true};
}

Json jsonOfAltitude(float altitude) {
  return PinLocation::isValid(altitude) ? Json(decimalOfFloat(altitude)) : Json(nullptr);
}

Json jsonOfObserver(const StoredObserver& stored) {
  const VTObserver& observer = stored.observer;
  const LocationCoordinate2D place = observer.coordinate();
  const LocationCoordinate2D horizon = observer.horizonPosition();
  const bool known = hasHorizon(observer);
  return {
      {"stored", stored.isStored},
      {"latitude", place.latitude},
      {"longitude", place.longitude},
      {"altitude", jsonOfAltitude(observer.altitude())},
      {"altitudeOffset", decimalOfFloat(observer.altitudeOffset())},
      {"totalAltitude", jsonOfAltitude(observer.totalAltitude())},
      {"altitudeAccuracy", observer.altitudeAccuracy()},
      {"altitudeSetManually", observer.isAltitudeSetManually()},
      {"horizonLatitude", known ? Json(horizon.latitude) : Json(nullptr)},
      {"horizonLongitude", known ? Json(horizon.longitude) : Json(nullptr)},
      {"horizonAltitude", jsonOfAltitude(observer.altitudeAtHorizon())},
      {"adjustForHeightAboveHorizon", observer.adjustForHeightAboveHorizon()},
      {"heightAboveHorizon", decimalOfFloat(observer.heightAboveHorizon())},
      {"altitudeText", observer.altitudeString()},
      {"heightAboveHorizonText", heightText(observer)},
      {"subtitle", observer.pinSubtitle()},
  };
}

std::string textOfObserver(const StoredObserver& stored, const Console& console) {
  const VTObserver& observer = stored.observer;
  const LocationCoordinate2D place = observer.coordinate();
  const LocationCoordinate2D horizon = observer.horizonPosition();
  std::string altitude = observer.altitudeString();
  if (observer.isAltitudeValid() && observer.altitudeOffset() != 0) {
    altitude += " (ground " + observer.stringForAltitude(observer.altitude()) + ", offset " +
                observer.stringForAltitude(observer.altitudeOffset()) + ")";
  }
  return console.bold(stored.isStored ? "Observer" : "Observer (default; none stored)") + "\n" +
         console.labelled("Place", placeText(place.latitude, place.longitude)) +
         console.labelled("Altitude", altitude) +
         console.labelled("Accuracy", observer.isAltitudeSetManually()
                                          ? "set by hand"
                                          : std::to_string(observer.altitudeAccuracy())) +
         console.labelled("Horizon", hasHorizon(observer)
                                         ? placeText(horizon.latitude, horizon.longitude)
                                         : kUnknown) +
         console.labelled("  altitude", observer.stringForAltitude(observer.altitudeAtHorizon())) +
         console.labelled("  height", heightText(observer)) +
         console.labelled("  adjusted", observer.adjustForHeightAboveHorizon() ? "on" : "off");
}

}  // namespace vantrel::cli
