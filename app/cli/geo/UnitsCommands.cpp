#include <nlohmann/json.hpp>

#include "cli/Arguments.h"
#include "cli/Command.h"
#include "cli/JsonText.h"
#include "cli/settings/SettingsAccess.h"
#include "common/ExitCode.h"
#include "common/TerminalText.h"
#include "units/DistanceUnitsManager.h"
#include "units/NSNumberWithDistanceUnit.h"

namespace vantrel::cli {

namespace {

constexpr int kMostDecimals = 15;
constexpr int kMostLevels = 4;
constexpr int kDefaultDecimals = 1;

using Length = std::optional<float>;

template <int kLeast, int kMost>
Expected<int> countFromArgument(const std::string& name, const std::string& text) {
  const auto count = integerFromArgument(name, text);
  if (count && *count >= kLeast && *count <= kMost) return static_cast<int>(*count);
  return invalidArgument(
      name, text, "an integer from " + std::to_string(kLeast) + " to " + std::to_string(kMost));
}

Expected<std::int32_t> systemFromArgument(const std::string& name, const std::string& text) {
  if (text == "metric") return DistanceUnitsManager::kMetric;
  if (text == "imperial") return DistanceUnitsManager::kImperial;
  return invalidArgument(name, text, "metric or imperial");
}

const char* systemName(const DistanceUnitsManager& manager) {
  return manager.currentUnits() == DistanceUnitsManager::kMetric ? "metric" : "imperial";
}

/// Returns the manager; fails if the settings cannot be read.
Expected<DistanceUnitsManager*> unitsManager() {
  return settingsForReading().map([](auto*) { return &DistanceUnitsManager::sharedInstance(); });
}

Json jsonOfUnit(const DistanceUnit& unit) {
  return {{"name", unit.name()},
          {"abbrName", unit.abbrName()},
          {"factor", decimalOfFloat(unit.factor())},
          {"allowsDecimals", unit.allowsDecimals()}};
}

int showUnits(Console& console) {
  const auto known = unitsManager();
  if (!known) return console.fail(known.error());
  const DistanceUnitsManager& manager = **known;
  const auto& units = manager.units();
  if (console.isJson()) {
    Json list = Json::array();
    for (const auto& unit : units) list.push_back(jsonOfUnit(unit));
    console.print(jsonText(Json{{"currentUnits", manager.currentUnits()},
                                {"system", systemName(manager)},
                                {"units", std::move(list)}}));
    return kExitDone;
  }
  const bool isImperial = manager.currentUnits() != DistanceUnitsManager::kMetric;
  std::string text = DistanceUnitsManager::distanceUnitToString(isImperial) + ":";
  for (const auto& unit : units) {
    text += " " + unit.name();
    if (unit.abbrName() != unit.name()) text += " (" + unit.abbrName() + ")";
  }
  console.print(text + "\n");
  return kExitDone;
}

int setUnits(const std::optional<std::int32_t>& units, Console& console) {
  return changeSettings(console, [&](UserDefaults& settings) -> Expected<void> {
    auto& manager = DistanceUnitsManager::sharedInstance();
    // Setting the same units writes nothing, so that damaged settings would go unnoticed.
    if (manager.currentUnits() == units) return settings.checkReadable();
    manager.setCurrentUnits(*units);
    return {};
  });
}

using UnitName = std::optional<std::string>;

Expected<void> checkUnit(const DistanceUnitsManager& manager, const char* option,
                         const UnitName& name) {
  if (!name || manager.indexOfUnit(*name) != -1) return {};
  std::string names;
  for (const auto& unit : manager.units()) names += (names.empty() ? "" : ", ") + unit.name();
  return invalidArgument(option, *name, "one of " + names);
}

struct BestRequest {
  Length length;
  UnitName least;
  UnitName most;
};

int showBest(const BestRequest& request, Console& console) {
  const auto& [length, least, most] = request;
  const auto manager = unitsManager();
  if (!manager) return console.fail(manager.error());
  for (const auto& [option, name] : {std::pair("--min", least), std::pair("--max", most)}) {
    const auto known = checkUnit(**manager, option, name);
    if (!known) return console.fail(known.error());
  }
  const DistanceUnit* unit = (*manager)->bestDistanceUnitForValue(*length, least, most);
  if (!unit) {
    return console.fail(
        invalidArgument("--min", *least, "a unit no larger than --max \"" + *most + "\"").value());
  }
  console.print(console.isJson() ? jsonText(jsonOfUnit(*unit)) : unit->name() + "\n");
  return kExitDone;
}

int showText(const char* key, float value, const std::string& text, Console& console) {
  console.print(console.isJson() ? jsonText(Json{{"value", decimalOfFloat(value)}, {key, text}})
                                 : text + "\n");
  return kExitDone;
}

struct FormatRequest {
  Length length;
  std::optional<int> decimals;
  std::optional<int> levels;
};

int showFormatted(const FormatRequest& request, Console& console) {
  if (const auto manager = unitsManager(); !manager) return console.fail(manager.error());
  const auto number = NSNumberWithDistanceUnit::numberWithFloat(*request.length);
  const std::string text = number.formattedValueWithNumberOfDecimals(
      request.decimals.value_or(kDefaultDecimals), request.levels.value_or(1));
  return showText("text", *request.length, text, console);
}

int showFraction(const Length& length, Console& console) {
  return showText("fraction", *length, DistanceUnitsManager::fractionInchesForValue(*length),
                  console);
}

}  // namespace

void fillUnitsCommands(CLI::App& parser, Session& session) {
  parser.require_subcommand(1);
  addCommand(parser, session, "show", "Show the chosen system and its units", &showUnits);
  const auto [set, system] =
      addCommand(parser, session, "set",
                 "Choose the system, for all programs that share the settings", &setUnits);
  addValueOption(set, "SYSTEM", system, &systemFromArgument, "metric|imperial", "The system");

  constexpr const char* kInBaseUnits = "Metres, or feet while units are imperial";
  const auto [best, limits] =
      addCommand(parser, session, "best", "Show the unit that suits a length best", &showBest);
  addValueOption(best, "VALUE", limits.length, &floatFromArgument, "", kInBaseUnits);
  addTextOption(best, "--min", limits.least, "UNIT", "Smallest unit");
  addTextOption(best, "--max", limits.most, "UNIT", "Largest unit");

  const auto [format, form] =
      addCommand(parser, session, "format", "Format a length with its unit", &showFormatted);
  addValueOption(format, "VALUE", form.length, &floatFromArgument, "", kInBaseUnits);
  addValueOption(format, "--decimals", form.decimals, &countFromArgument<0, kMostDecimals>, "COUNT",
                 "Most digits after the point (1)");
  addValueOption(format, "--levels", form.levels, &countFromArgument<1, kMostLevels>, "COUNT",
                 "Most units, as two in 1km 250m (1)");

  const auto [fraction, inches] = addCommand(
      parser, session, "fraction", "Show the nearest thirty-second of an inch", &showFraction);
  addValueOption(fraction, "VALUE", inches, &floatFromArgument, "", "Inches; clamped to 0 to 1");
}

}  // namespace vantrel::cli
