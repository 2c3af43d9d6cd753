#include <CLI/App.hpp>
#include <memory>
#include <nlohmann/json.hpp>

#include "cli/CommandGroup.h"
#include "cli/ExitCode.h"
#include "cli/ObserverText.h"
#include "cli/PinOptions.h"
#include "cli/SettingsAccess.h"
#include "cli/ValueOption.h"
#include "defaults/PlannerKeys.h"

namespace vantrel::cli {

namespace {

/// What `observer set` is given; nothing stays as it is.
struct Changes {
  PinChanges pin;
  std::optional<double> horizonLatitude;
  std::optional<double> horizonLongitude;
  std::optional<float> horizonAltitude;
  std::optional<bool> adjust;
  bool clearHorizon = false;

  bool any() const {
    return pin.any() || horizonLatitude || horizonLongitude || horizonAltitude || adjust ||
           clearHorizon;
  }
};

Expected<void> apply(const Changes& changes, VTObserver& observer) {
  changes.pin.apply(observer);
  if (changes.clearHorizon) observer.resetHorizon();
  LocationCoordinate2D horizon = observer.horizonPosition();
  const bool isNew = horizon.latitude == kLocationCoordinate2DInvalid.latitude;
  if (isNew && changes.horizonLatitude.has_value() != changes.horizonLongitude.has_value()) {
    return tl::make_unexpected(
        failure(kExitUsage, "observer set",
                "there is no horizon yet; give --horizon-latitude and --horizon-longitude"));
  }
  horizon.latitude = changes.horizonLatitude.value_or(horizon.latitude);
  horizon.longitude = changes.horizonLongitude.value_or(horizon.longitude);
  observer.setHorizonPosition(horizon);
  if (changes.horizonAltitude) observer.setAltitudeAtHorizon(*changes.horizonAltitude);
  if (changes.adjust) observer.setAdjustForHeightAboveHorizon(*changes.adjust);
  return {};
}

/// Where the planner stands, when that was ever told.
Expected<std::optional<LocationCoordinate2D>> storedPlace() {
  const auto defaults = settingsForReading();
  if (!defaults) return tl::make_unexpected(defaults.error());
  return storedObserver(**defaults).map([](const StoredObserver& stored) {
    return stored.isStored ? std::optional(stored.observer.coordinate()) : std::nullopt;
  });
}

int setObserver(Changes changes, Console& console) {
  if (!changes.any()) {
    return console.fail(
        failure(kExitUsage, "observer set", "nothing to change; see vantrel observer set --help"));
  }
  if (changes.pin.lookUpAltitude) {
    const auto found = storedPlace().and_then(
        [&](const auto& place) { return lookUpAltitude(changes.pin, place); });
    if (!found) return console.fail(found.error());
  }
  return changeSettings(console, [&](UserDefaults& defaults) -> Expected<void> {
    auto stored = storedObserver(defaults);
    if (!stored) return tl::make_unexpected(stored.error());
    if (auto done = apply(changes, stored->observer); !done) return done;
    defaults.setObject(PropertyList::data(stored->observer.archivedData()),
                       kUserDefaultsPlannerObserver);
    return {};
  });
}

int showObserver(Console& console) {
  const auto defaults = settingsForReading();
  if (!defaults) return console.fail(defaults.error());
  const auto observer = storedObserver(**defaults);
  if (!observer) return console.fail(observer.error());
  console.print(console.isJson() ? jsonText(jsonOfObserver(*observer))
                                 : textOfObserver(*observer, console));
  return kExitDone;
}

}  // namespace

void fillObserverCommands(CLI::App& parser, Session& session) {
  parser.require_subcommand(1);
  parser.add_subcommand("show", "Show the stored observer, or what a fresh one is")
      ->callback([&session] { session.exitCode = showObserver(session.console); });

  CLI::App& set = *parser.add_subcommand("set", "Change what is given, and nothing else");
  const auto changes = std::make_shared<Changes>();
  addPinOptions(set, changes->pin);
  CLI::Option* const horizon[] = {
      addValueOption(set, "--horizon-latitude", changes->horizonLatitude, &latitudeFromArgument,
                     "DEGREES", "Of the point of the horizon"),
      addValueOption(set, "--horizon-longitude", changes->horizonLongitude, &longitudeFromArgument,
                     "DEGREES", "Of the point of the horizon"),
      addValueOption(set, "--horizon-altitude", changes->horizonAltitude, &altitudeFromArgument,
                     "METRES", "Of the point of the horizon"),
      addValueOption(set, "--adjust", changes->adjust, &switchFromArgument, "on|off",
                     "Reckon with the height above the horizon"),
  };
  const auto clear = [changes] { changes->clearHorizon = true; };
  auto* none = set.add_flag_callback("--no-horizon", clear, "Forget the horizon; adjusts off");
  for (auto* option : horizon) none->excludes(option);
  set.callback([=, &session] { session.exitCode = setObserver(*changes, session.console); });
}

}  // namespace vantrel::cli
