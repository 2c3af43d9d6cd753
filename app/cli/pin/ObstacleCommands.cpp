#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "cli/Command.h"
#include "cli/pin/ObserverText.h"
#include "cli/pin/PinOptions.h"
#include "cli/plan/PlanText.h"
#include "cli/settings/SettingsAccess.h"
#include "common/ExitCode.h"
#include "common/TerminalText.h"
#include "defaults/PlannerKeys.h"
#include "geo/Obstacle.h"

namespace vantrel::cli {

namespace {

/// Returns the obstacle in the settings; `nullopt` if they have no latitude for it, which the pin
/// would read as (0, 0).
std::optional<Obstacle> placedObstacle(const UserDefaults& defaults) {
  std::optional<Obstacle> obstacle(std::in_place);
  if (!defaults.objectForKey(kUserDefaultsPlannerObstacleLatitude) ||
      !obstacle->refreshFromUserDefaults()) {
    obstacle.reset();
  }
  return obstacle;
}

/// Whether the bearing is defined: false at the same point, and so near to the antipode that the
/// iteration does not converge.
bool hasDirection(const VTObserver& observer, const Obstacle& obstacle) {
  const LocationCoordinate2D from = observer.coordinate();
  const LocationCoordinate2D to = obstacle.coordinate();
  return GeodeticCalculator().geodeticCurveBetweenSource(from, 0, to, 0).converged() ||
         (from.longitude == to.longitude && from.latitude != to.latitude);
}

std::string degrees(float value) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%.2f°", double{value});
  return text.data();
}

/// Rounds to below 360.
std::string bearingText(float bearing) {
  constexpr float kRoundedToFullTurn = 359.995F;
  return degrees(bearing < kRoundedToFullTurn ? bearing : 0);
}

/// An obstacle as seen from the observer.
struct Sight {
  Obstacle obstacle;
  bool isPlaced = false;
  bool hasBearing = false;
  bool hasDifference = false;
};

Sight sight(const UserDefaults& defaults, const VTObserver& observer) {
  Sight sight;
  auto placed = placedObstacle(defaults);
  if (!placed) return sight;
  sight.isPlaced = true;
  sight.obstacle = *std::move(placed);
  sight.obstacle.recalculateDataWithObserver(observer);
  sight.hasBearing = hasDirection(observer, sight.obstacle);
  sight.hasDifference = sight.obstacle.altitudeDifference() != Obstacle::kUnknownDifference;
  return sight;
}

std::string jsonOfSight(const Sight& sight) {
  const Obstacle& obstacle = sight.obstacle;
  const auto when = [](bool known, const auto& value) { return known ? Json(value) : nullptr; };
  const auto number = [&](bool known, float value) { return when(known, decimalOfFloat(value)); };
  const bool placed = sight.isPlaced;
  return jsonText(Json{
      {"placed", placed},
      {"visible", obstacle.isVisible()},
      {"latitude", when(placed, obstacle.coordinate().latitude)},
      {"longitude", when(placed, obstacle.coordinate().longitude)},
      {"altitude", placed ? jsonOfAltitude(obstacle.altitude()) : nullptr},
      {"altitudeOffset", number(placed, obstacle.altitudeOffset())},
      {"totalAltitude", placed ? jsonOfAltitude(obstacle.totalAltitude()) : nullptr},
      {"altitudeAccuracy", when(placed, obstacle.altitudeAccuracy())},
      {"bearing", number(sight.hasBearing, obstacle.bearing())},
      {"distance", number(placed, obstacle.pin2pinDistance())},
      {"altitudeDifference", number(sight.hasDifference, obstacle.altitudeDifference())},
      {"elevation", number(sight.hasDifference, obstacle.elevation())},
      {"distanceText", when(placed, obstacle.pin2pinDistanceString())},
      {"altitudeText", when(placed, obstacle.altitudeString())},
      {"altitudeDifferenceText", when(placed, obstacle.altitudeDifferenceString())},
      {"altitudeOffsetText", when(placed, obstacle.altitudeOffsetString())},
      {"subtitle", when(placed, obstacle.pinSubtitle())},
  });
}

std::string textOfSight(const Sight& sight, const Console& console) {
  if (!sight.isPlaced) return "No obstacle is placed.\n";
  const Obstacle& obstacle = sight.obstacle;
  const LocationCoordinate2D place = obstacle.coordinate();
  return console.bold(obstacle.isVisible() ? "Obstacle (shown)" : "Obstacle (hidden)") + "\n" +
         console.labelled("Place", placeText(place.latitude, place.longitude)) +
         console.labelled("Altitude", obstacle.altitudeString()) +
         console.labelled("Bearing",
                          sight.hasBearing ? bearingText(obstacle.bearing()) : kUnknown) +
         console.labelled("Distance", obstacle.pin2pinDistanceString()) +
         console.labelled("Difference", obstacle.altitudeDifferenceString()) +
         console.labelled("Elevation",
                          sight.hasDifference ? degrees(obstacle.elevation()) : kUnknown);
}

int showObstacle(Console& console) {
  const auto defaults = settingsForReading();
  if (!defaults) return console.fail(defaults.error());
  const auto observer = storedObserver(**defaults);
  if (!observer) return console.fail(observer.error());
  const Sight view = sight(**defaults, observer->observer);
  console.print(console.isJson() ? jsonOfSight(view) : textOfSight(view, console));
  return kExitDone;
}

/// The options of `obstacle set`; `nullopt` keeps a value.
struct ObstacleChanges {
  PinChanges pin;
  std::optional<bool> visible;
};

/// Longitudes that single precision rounds to the mark "not placed" become the same meridian with
/// the opposite sign.
double placeableLongitude(double longitude) {
  return static_cast<float>(longitude) == Obstacle::kNotPlaced ? -double{Obstacle::kNotPlaced}
                                                               : longitude;
}

int setObstacle(const ObstacleChanges& given, Console& console) {
  ObstacleChanges changes = given;
  if (!changes.pin.any() && !changes.visible) {
    return console.fail(
        failure(kExitUsage, "obstacle set", "nothing to change; see vantrel obstacle set --help"));
  }
  if (changes.pin.longitude) changes.pin.longitude = placeableLongitude(*changes.pin.longitude);
  if (changes.pin.lookUpAltitude) {
    const auto found = settingsForReading().and_then([&](auto* defaults) {
      const auto obstacle = placedObstacle(*defaults);
      return lookUpAltitude(changes.pin,
                            obstacle ? std::optional(obstacle->coordinate()) : std::nullopt);
    });
    if (!found) return console.fail(found.error());
  }
  return changeSettings(console, [&](UserDefaults& defaults) -> Expected<void> {
    Obstacle obstacle;
    if (!placedObstacle(defaults)) {
      if (!changes.pin.latitude || !changes.pin.longitude) {
        return tl::unexpected(
            failure(kExitUsage, "obstacle set",
                    "no obstacle is placed yet; give --latitude and --longitude"));
      }
      obstacle.setAltitude(PinLocation::kUnknownAltitude);
      obstacle.setAltitudeOffset(0);
      obstacle.setAltitudeAccuracy(0);
      obstacle.setIsVisible(true);
    }
    changes.pin.apply(obstacle);
    if (changes.visible) obstacle.setIsVisible(*changes.visible);
    obstacle.saveToUserDefaults();
    return {};
  });
}

int toggleObstacle(Console& console) {
  return changeSettings(console, [&](UserDefaults& defaults) -> Expected<void> {
    // Saving the obstacle would also write a place, even if there is none.
    Obstacle obstacle;
    obstacle.toggle();
    defaults.setBool(obstacle.isVisible(), kUserDefaultsPlannerObstacleToggle);
    if (!placedObstacle(defaults)) console.note("no obstacle is placed");
    return {};
  });
}

int clearObstacle(Console& console) {
  return changeSettings(console, [](UserDefaults& defaults) -> Expected<void> {
    defaults.setDouble(Obstacle::kNotPlaced, kUserDefaultsPlannerObstacleLatitude);
    defaults.setDouble(Obstacle::kNotPlaced, kUserDefaultsPlannerObstacleLongitude);
    return {};
  });
}

}  // namespace

void fillObstacleCommands(CLI::App& parser, Session& session) {
  parser.require_subcommand(1);
  addCommand(parser, session, "show", "Show bearing, distance, height difference and elevation",
             &showObstacle);
  const auto [set, changes] = addCommand(
      parser, session, "set", "Place the obstacle, or change the given values", &setObstacle);
  addPinOptions(set, changes.pin);
  addValueOption(set, "--visible", changes.visible, &switchFromArgument, "on|off",
                 "Whether the planner shows it (a new one: on)");
  addCommand(parser, session, "toggle", "Show the obstacle on the planner, or hide it",
             &toggleObstacle);
  addCommand(parser, session, "clear", "Remove the obstacle from the planner", &clearObstacle);
}

}  // namespace vantrel::cli
