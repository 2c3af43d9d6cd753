#include <functional>
#include <nlohmann/json.hpp>

#include "base/Iso8601.h"
#include "cli/Arguments.h"
#include "cli/Command.h"
#include "cli/pin/ObserverText.h"
#include "cli/plan/PlanText.h"
#include "cli/settings/PropertyListText.h"
#include "cli/settings/SettingsAccess.h"
#include "common/ExitCode.h"
#include "common/TerminalText.h"
#include "defaults/PlannerKeys.h"
#include "widget/TodayUtils.h"

namespace vantrel::cli {

namespace {

struct Preset {
  std::optional<double> latitude;
  std::optional<double> longitude;
  std::optional<Date> date;
};

/// Returns the value of a key, read by `read`; `nullopt` if the settings lack it.
template <typename T>
std::optional<T> valueOf(const UserDefaults& defaults, std::string_view key,
                         T (UserDefaults::*read)(std::string_view) const) {
  return defaults.objectForKey(key) ? std::optional((defaults.*read)(key)) : std::nullopt;
}

/// The planner's settings; `nullopt` for those that are absent.
struct Planner {
  explicit Planner(const UserDefaults& defaults)
      : mapLatitude(valueOf(defaults, kUserDefaultsPlannerMapLat, &UserDefaults::doubleForKey)),
        mapLongitude(valueOf(defaults, kUserDefaultsPlannerMapLng, &UserDefaults::doubleForKey)),
        pinLatitude(
            valueOf(defaults, kUserDefaultsPlannerPinCoordLat, &UserDefaults::doubleForKey)),
        pinLongitude(
            valueOf(defaults, kUserDefaultsPlannerPinCoordLng, &UserDefaults::doubleForKey)),
        date(defaults.objectForKey(kUserDefaultsPlannerDate).asDate()),
        timezone(defaults.stringForKey(kUserDefaultsPlannerTimeZone)),
        panel(valueOf(defaults, kUserDefaultsPlannerInfoWindowPage, &UserDefaults::integerForKey)),
        obstacle(valueOf(defaults, kUserDefaultsPlannerObstacleToggle, &UserDefaults::boolForKey)) {
    if (const auto state = valueOf(defaults, kUserDefaultsPlannerMilkyWayLayerState,
                                   &UserDefaults::integerForKey)) {
      milkyWay = *state != 0;
    }
  }

  /// The planner's time zone, otherwise the device's.
  TimeZone zone() const { return TimeZone::timeZoneOrDefault(timezone); }

  std::optional<double> mapLatitude;
  std::optional<double> mapLongitude;
  std::optional<double> pinLatitude;
  std::optional<double> pinLongitude;
  std::optional<Date> date;
  std::optional<std::string> timezone;
  std::optional<std::int64_t> panel;
  std::optional<bool> obstacle;
  std::optional<bool> milkyWay;
};

std::string jsonOfPlanner(const Planner& planner, const StoredObserver& observer) {
  Json json = {
      {"mapLatitude", orNull(planner.mapLatitude)},
      {"mapLongitude", orNull(planner.mapLongitude)},
      {"date", nullptr},
      {"localDate", nullptr},
      {"timezone", orNull(planner.timezone)},
      {"panel", orNull(planner.panel)},
      {"milkyWayVisible", orNull(planner.milkyWay)},
      {"obstacleVisible", orNull(planner.obstacle)},
      {"pinLatitude", orNull(planner.pinLatitude)},
      {"pinLongitude", orNull(planner.pinLongitude)},
      {"observer", observer.isStored ? jsonOfObserver(observer) : Json(nullptr)},
  };
  const std::string date = planner.date ? iso8601String(*planner.date) : std::string();
  if (!date.empty()) {
    json["date"] = date;
    json["localDate"] =
        iso8601String(*planner.date, planner.zone().secondsFromGMTForDate(*planner.date));
  }
  return jsonText(json);
}

std::string textOfPlanner(const Planner& planner, const StoredObserver& observer,
                          const Console& console) {
  const auto visibility = [](const std::optional<bool>& visible) {
    return visible ? (*visible ? "shown" : "hidden") : kUnknown;
  };
  const LocationCoordinate2D place = observer.observer.coordinate();
  return console.bold("Planner") + "\n" +
         console.labelled("Map", placeText(planner.mapLatitude, planner.mapLongitude)) +
         console.labelled("Date", whenText(planner.date, planner.zone())) +
         console.labelled("Zone", shown(planner.timezone)) +
         console.labelled("Panel", planner.panel ? std::to_string(*planner.panel) : kUnknown) +
         console.labelled("Milky way", visibility(planner.milkyWay)) +
         console.labelled("Obstacle", visibility(planner.obstacle)) +
         console.labelled(
             "Observer", observer.isStored ? placeText(place.latitude, place.longitude) : kUnknown);
}

int showPlanner(Console& console) {
  const auto defaults = settingsForReading();
  if (!defaults) return console.fail(defaults.error());
  const auto observer = storedObserver(**defaults);
  if (!observer) return console.fail(observer.error());
  const Planner planner(**defaults);
  console.print(console.isJson() ? jsonOfPlanner(planner, *observer)
                                 : textOfPlanner(planner, *observer, console));
  return kExitDone;
}

/// Calls a function of TodayUtils, which writes the settings itself.
int handOff(Console& console, const std::function<void()>& write) {
  return changeSettings(console, [&](UserDefaults& /*defaults*/) -> Expected<void> {
    write();
    return {};
  });
}

int setPreset(const Preset& preset, Console& console) {
  return handOff(console, [&] {
    TodayUtils::setDefaultPlannerPosition({*preset.latitude, *preset.longitude}, *preset.date);
  });
}

int setPanel(const std::optional<std::int64_t>& page, Console& console) {
  return handOff(console, [&] { TodayUtils::setCurrentPlannerPanelIndex(*page); });
}

int setMilkyWay(const std::optional<bool>& visible, Console& console) {
  return handOff(console, [&] { TodayUtils::setPlannerMilkyWayVisible(*visible); });
}

}  // namespace

void fillPlannerCommands(CLI::App& parser, Session& session) {
  parser.require_subcommand(1);
  const auto [preset, given] = addCommand(
      parser, session, "preset", "Set map, observer and date; hides the obstacle", &setPreset);
  addValueOption(preset, "--latitude", given.latitude, &latitudeFromArgument, "DEGREES",
                 "-90 to 90, north positive")
      ->required();
  addValueOption(preset, "--longitude", given.longitude, &longitudeFromArgument, "DEGREES",
                 "-180 to 180, east positive")
      ->required();
  addValueOption(preset, "--date", given.date, &dateFromArgument, "WHEN",
                 "2026-07-15T21:40:00Z, or wall time here as \"2026-07-15 23:40\"")
      ->required();
  const auto [panel, page] =
      addCommand(parser, session, "panel", "Choose the page of the information panel", &setPanel);
  addValueOption(panel, "PAGE", page, &integerFromArgument, "", "Number of the page, from 0");
  const auto [milkyWay, visible] =
      addCommand(parser, session, "milky-way", "Show or hide the milky way", &setMilkyWay);
  addValueOption(milkyWay, "VISIBLE", visible, &switchFromArgument, "on|off",
                 "Whether the planner shows it");
  addCommand(parser, session, "show", "Show the planner's settings", &showPlanner);
}

}  // namespace vantrel::cli
