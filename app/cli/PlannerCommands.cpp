#include <CLI/App.hpp>
#include <memory>
#include <nlohmann/json.hpp>

#include "base/Iso8601.h"
#include "cli/Arguments.h"
#include "cli/CommandGroup.h"
#include "cli/ExitCode.h"
#include "cli/ObserverText.h"
#include "cli/PlanText.h"
#include "cli/PropertyListText.h"
#include "cli/SettingsAccess.h"
#include "cli/TerminalText.h"
#include "cli/ValueOption.h"
#include "defaults/PlannerKeys.h"
#include "widget/TodayUtils.h"

namespace vantrel::cli {

namespace {

struct Preset {
  std::optional<double> latitude;
  std::optional<double> longitude;
  std::optional<Date> date;
};

Expected<Date> dateFromArgument(const std::string& option, const std::string& text) {
  return momentFromArgument(option, text, TimeZone::defaultTimeZone()).map([](const Moment& m) {
    return m.first;
  });
}

/// What the settings tell of the planner; nothing for what they lack.
struct Planner {
  explicit Planner(const UserDefaults& defaults)
      : mapLatitude(real(defaults, kUserDefaultsPlannerMapLat)),
        mapLongitude(real(defaults, kUserDefaultsPlannerMapLng)),
        pinLatitude(real(defaults, kUserDefaultsPlannerPinCoordLat)),
        pinLongitude(real(defaults, kUserDefaultsPlannerPinCoordLng)),
        date(defaults.objectForKey(kUserDefaultsPlannerDate).asDate()),
        timezone(defaults.stringForKey(kUserDefaultsPlannerTimeZone)) {
    if (defaults.objectForKey(kUserDefaultsPlannerInfoWindowPage)) {
      panel = defaults.integerForKey(kUserDefaultsPlannerInfoWindowPage);
    }
    if (defaults.objectForKey(kUserDefaultsPlannerMilkyWayLayerState)) {
      milkyWay = defaults.integerForKey(kUserDefaultsPlannerMilkyWayLayerState) != 0;
    }
    if (defaults.objectForKey(kUserDefaultsPlannerObstacleToggle)) {
      obstacle = defaults.boolForKey(kUserDefaultsPlannerObstacleToggle);
    }
  }

  static std::optional<double> real(const UserDefaults& defaults, std::string_view key) {
    if (!defaults.objectForKey(key)) return std::nullopt;
    return defaults.doubleForKey(key);
  }

  /// The one that is named, else the device's.
  TimeZone zone() const {
    return TimeZone::timeZoneWithName(timezone.value_or("")).value_or(TimeZone::defaultTimeZone());
  }

  std::optional<double> mapLatitude;
  std::optional<double> mapLongitude;
  std::optional<double> pinLatitude;
  std::optional<double> pinLongitude;
  std::optional<Date> date;
  std::optional<std::string> timezone;
  std::optional<std::int64_t> panel;
  std::optional<bool> milkyWay;
  std::optional<bool> obstacle;
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
  const std::string unknown = "--";
  std::string when = unknown;
  if (planner.date) {
    when = wallText(*planner.date, planner.zone());
    if (const auto here = hereText(*planner.date, planner.zone())) when += " (" + *here + ")";
  }
  const auto shown = [&](const std::optional<bool>& visible) {
    return visible ? (*visible ? "shown" : "hidden") : unknown;
  };
  const LocationCoordinate2D place = observer.observer.coordinate();
  return console.bold("Planner") + "\n" +
         console.labelled("Map", placeText(planner.mapLatitude, planner.mapLongitude)) +
         console.labelled("Date", when) +
         console.labelled("Zone", printable(planner.timezone.value_or(unknown))) +
         console.labelled("Panel", planner.panel ? std::to_string(*planner.panel) : unknown) +
         console.labelled("Milky way", shown(planner.milkyWay)) +
         console.labelled("Obstacle", shown(planner.obstacle)) +
         console.labelled("Observer",
                          observer.isStored ? placeText(place.latitude, place.longitude) : unknown);
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

/// One of the hand-offs, which write the settings themselves.
template <typename HandOff>
int handOff(Console& console, HandOff give) {
  return changeSettings(console, [&](UserDefaults& /*defaults*/) -> Expected<void> {
    give();
    return {};
  });
}

void fillPreset(CLI::App& parser, Session& session) {
  const auto preset = std::make_shared<Preset>();
  addValueOption(parser, "--latitude", preset->latitude, &latitudeFromArgument, "DEGREES",
                 "-90 to 90, north positive")
      ->required();
  addValueOption(parser, "--longitude", preset->longitude, &longitudeFromArgument, "DEGREES",
                 "-180 to 180, east positive")
      ->required();
  addValueOption(parser, "--date", preset->date, &dateFromArgument, "WHEN",
                 "2026-07-15T21:40:00Z, or wall time here as \"2026-07-15 23:40\"")
      ->required();
  parser.callback([preset, &session] {
    session.exitCode = handOff(session.console, [&] {
      TodayUtils::setDefaultPlannerPosition({*preset->latitude, *preset->longitude}, *preset->date);
    });
  });
}

}  // namespace

void fillPlannerCommands(CLI::App& parser, Session& session) {
  parser.require_subcommand(1);
  fillPreset(
      *parser.add_subcommand("preset", "Set map, observer and date; the obstacle is switched off"),
      session);

  CLI::App& panel = *parser.add_subcommand("panel", "Choose the page of the information panel");
  const auto page = std::make_shared<std::optional<std::int64_t>>();
  addValueOption(panel, "PAGE", *page, &integerFromArgument, "", "Its number; 0 is the first");
  panel.callback([page, &session] {
    session.exitCode =
        handOff(session.console, [&] { TodayUtils::setCurrentPlannerPanelIndex(**page); });
  });

  CLI::App& milkyWay = *parser.add_subcommand("milky-way", "Show or hide the milky way");
  const auto visible = std::make_shared<std::optional<bool>>();
  addValueOption(milkyWay, "VISIBLE", *visible, &switchFromArgument, "", "Whether it shows")
      ->type_name("on|off");
  milkyWay.callback([visible, &session] {
    session.exitCode =
        handOff(session.console, [&] { TodayUtils::setPlannerMilkyWayVisible(**visible); });
  });

  parser.add_subcommand("show", "Show what the planner is set to")->callback([&session] {
    session.exitCode = showPlanner(session.console);
  });
}

}  // namespace vantrel::cli
