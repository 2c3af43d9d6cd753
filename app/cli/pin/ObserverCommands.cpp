#include <nlohmann/json.hpp>

#include "cli/Command.h"
#include "cli/pin/ObserverText.h"
#include "cli/pin/PinOptions.h"
#include "cli/settings/SettingsAccess.h"
#include "common/ExitCode.h"
#include "defaults/PlannerKeys.h"

namespace vantrel::cli {

namespace {

/// The options of `observer set`; `nullopt` keeps a value.
struct ObserverChanges {
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

Expected<void> apply(const ObserverChanges& changes, VTObserver& observer) {
  changes.pin.apply(observer);
  if (changes.clearHorizon) observer.resetHorizon();
  LocationCoordinate2D horizon = observer.horizonPosition();
  const bool isNew = horizon.latitude == kLocationCoordinate2DInvalid.latitude;
  if (isNew && changes.horizonLatitude.has_value() != changes.horizonLongitude.has_value()) {
    return tl::unexpected(
        failure(kExitUsage, "observer set",
                "no horizon is stored; give --horizon-latitude and --horizon-longitude"));
  }
  horizon.latitude = changes.horizonLatitude.value_or(horizon.latitude);
  horizon.longitude = changes.horizonLongitude.value_or(horizon.longitude);
  observer.setHorizonPosition(horizon);
  if (changes.horizonAltitude) observer.setAltitudeAtHorizon(*changes.horizonAltitude);
  if (changes.adjust) observer.setAdjustForHeightAboveHorizon(*changes.adjust);
  return {};
}

Expected<StoredObserver> currentObserver() {
  return settingsForReading().and_then([](auto* defaults) { return storedObserver(*defaults); });
}

int setObserver(const ObserverChanges& given, Console& console) {
  ObserverChanges changes = given;
  if (!changes.any()) {
    return console.fail(
        failure(kExitUsage, "observer set", "nothing to change; see vantrel observer set --help"));
  }
  if (changes.pin.lookUpAltitude) {
    const auto found = currentObserver().and_then([&](const auto& stored) {
      return lookUpAltitude(changes.pin, stored.isStored
                                             ? std::optional(stored.observer.coordinate())
                                             : std::nullopt);
    });
    if (!found) return console.fail(found.error());
  }
  return changeSettings(console, [&](UserDefaults& defaults) -> Expected<void> {
    auto stored = storedObserver(defaults);
    if (!stored) return tl::unexpected(stored.error());
    if (auto done = apply(changes, stored->observer); !done) return done;
    defaults.setObject(PropertyList::data(stored->observer.archivedData()),
                       kUserDefaultsPlannerObserver);
    return {};
  });
}

int showObserver(Console& console) {
  const auto observer = currentObserver();
  if (!observer) return console.fail(observer.error());
  console.print(console.isJson() ? jsonText(jsonOfObserver(*observer))
                                 : textOfObserver(*observer, console));
  return kExitDone;
}

}  // namespace

void fillObserverCommands(CLI::App& parser, Session& session) {
  parser.require_subcommand(1);
  addCommand(parser, session, "show", "Show the stored observer, or the default one",
             &showObserver);
  const auto [set, changes] =
      addCommand(parser, session, "set", "Change the given values of the observer", &setObserver);
  addPinOptions(set, changes.pin);
  CLI::Option* const horizon[] = {
      addValueOption(set, "--horizon-latitude", changes.horizonLatitude, &latitudeFromArgument,
                     "DEGREES", "Latitude of the horizon point"),
      addValueOption(set, "--horizon-longitude", changes.horizonLongitude, &longitudeFromArgument,
                     "DEGREES", "Longitude of the horizon point"),
      addValueOption(set, "--horizon-altitude", changes.horizonAltitude, &altitudeFromArgument,
                     "METRES", "Altitude of the horizon point"),
      addValueOption(set, "--adjust", changes.adjust, &switchFromArgument, "on|off",
                     "Adjust for the height above the horizon"),
  };
  const auto clear = [&isClear = changes.clearHorizon] { isClear = true; };
  auto* none =
      set.add_flag_callback("--no-horizon", clear, "Remove the horizon; implies --adjust off");
  for (auto* option : horizon) none->excludes(option);
}

}  // namespace vantrel::cli
