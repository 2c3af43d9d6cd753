#include <CLI/App.hpp>
#include <memory>
#include <nlohmann/json.hpp>

#include "cli/Arguments.h"
#include "cli/CommandGroup.h"
#include "cli/ExitCode.h"
#include "cli/JsonText.h"
#include "cli/SettingsAccess.h"
#include "cli/TerminalText.h"
#include "cli/ValueOption.h"
#include "units/DistanceUnitsManager.h"
#include "units/NSNumberWithDistanceUnit.h"

namespace vantrel::cli {

namespace {

constexpr int kMostDecimals = 15;
constexpr int kMostLevels = 4;
constexpr int kDefaultDecimals = 1;

tl::unexpected<Error> refused(const std::string& name, const std::string& text,
                              const std::string& allowed) {
  return tl::make_unexpected(
      failure(kExitUsage, name + " \"" + text + "\"", "allowed are " + allowed));
}

template <int kLeast, int kMost>
Expected<int> countFromArgument(const std::string& name, const std::string& text) {
  const auto count = integerFromArgument(name, text);
  if (count && *count >= kLeast && *count <= kMost) return static_cast<int>(*count);
  return refused(name, text,
                 "whole numbers from " + std::to_string(kLeast) + " to " + std::to_string(kMost));
}

Expected<std::int32_t> systemFromArgument(const std::string& name, const std::string& text) {
  if (text == "metric") return DistanceUnitsManager::kMetric;
  if (text == "imperial") return DistanceUnitsManager::kImperial;
  return refused(name, text, "metric, imperial");
}

const char* systemName(const DistanceUnitsManager& manager) {
  return manager.currentUnits() == DistanceUnitsManager::kMetric ? "metric" : "imperial";
}

/// The manager, once it is known that the choice of units can be read.
Expected<DistanceUnitsManager*> unitsManager() {
  return settingsForReading().map([](auto*) { return &DistanceUnitsManager::sharedInstance(); });
}

Json jsonOfUnit(const DistanceUnit& unit) {
  return {{"name", unit.name()},
          {"abbrName", unit.abbrName()},
          {"factor", decimalOfFloat(unit.factor())},
          {"allowsDecimals", unit.allowsDecimals()}};
}

int showUnits(const DistanceUnitsManager& manager, Console& console) {
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

int setUnits(std::int32_t units, Console& console) {
  return changeSettings(console, [units](UserDefaults& settings) -> Expected<void> {
    auto& manager = DistanceUnitsManager::sharedInstance();
    // What is chosen already is not written, so that damaged settings would stay as they are.
    if (manager.currentUnits() == units) return settings.checkReadable();
    manager.setCurrentUnits(units);
    return {};
  });
}

using UnitName = std::optional<std::string>;

Expected<void> checkUnit(const DistanceUnitsManager& manager, const char* option,
                         const UnitName& name) {
  if (!name || manager.indexOfUnit(*name) != -1) return {};
  std::string allowed;
  for (const auto& unit : manager.units()) allowed += (allowed.empty() ? "" : ", ") + unit.name();
  return refused(option, *name, allowed);
}

int showBest(const DistanceUnitsManager& manager, float value, const UnitName& least,
             const UnitName& most, Console& console) {
  const auto known = checkUnit(manager, "--min", least).and_then([&] {
    return checkUnit(manager, "--max", most);
  });
  if (!known) return console.fail(known.error());
  const DistanceUnit* unit = manager.bestDistanceUnitForValue(value, least, most);
  if (!unit) {
    return console.fail(
        failure(kExitUsage, "--min \"" + *least + "\"", "larger than --max \"" + *most + "\""));
  }
  console.print(console.isJson() ? jsonText(jsonOfUnit(*unit)) : unit->name() + "\n");
  return kExitDone;
}

int showText(const char* key, float value, const std::string& text, Console& console) {
  console.print(console.isJson() ? jsonText(Json{{"value", decimalOfFloat(value)}, {key, text}})
                                 : text + "\n");
  return kExitDone;
}

/// Runs `action` with the manager and gives its exit code.
template <typename Action>
int withUnits(Console& console, Action action) {
  const auto manager = unitsManager();
  return manager ? action(**manager) : console.fail(manager.error());
}

std::shared_ptr<std::optional<float>> addLength(CLI::App& parser, const char* description) {
  auto value = std::make_shared<std::optional<float>>();
  addValueOption(parser, "VALUE", *value, &floatFromArgument, "", description);
  return value;
}

constexpr const char* kInBaseUnits = "Metres, or feet while units are imperial";

void fillShowAndSet(CLI::App& parser, Session& session) {
  Console& console = session.console;
  CLI::App& show = *parser.add_subcommand("show", "Show the chosen system and its units");
  show.callback([&] {
    session.exitCode =
        withUnits(console, [&](const auto& manager) { return showUnits(manager, console); });
  });

  CLI::App& set = *parser.add_subcommand("set", "Choose the system, for all programs of the group");
  const auto system = std::make_shared<std::optional<std::int32_t>>();
  addValueOption(set, "SYSTEM", *system, &systemFromArgument, "", "The system")
      ->type_name("metric|imperial");
  set.callback([=, &session, &console] { session.exitCode = setUnits(**system, console); });
}

void fillBest(CLI::App& parser, Session& session) {
  const auto value = addLength(parser, kInBaseUnits);
  const auto least = std::make_shared<UnitName>();
  const auto most = std::make_shared<UnitName>();
  addTextOption(parser, "--min", *least, "UNIT", "No smaller unit than this");
  addTextOption(parser, "--max", *most, "UNIT", "No larger unit than this");
  parser.callback([=, &session] {
    session.exitCode = withUnits(session.console, [&](const auto& manager) {
      return showBest(manager, **value, *least, *most, session.console);
    });
  });
}

void fillFormat(CLI::App& parser, Session& session) {
  const auto value = addLength(parser, kInBaseUnits);
  const auto decimals = std::make_shared<std::optional<int>>();
  const auto levels = std::make_shared<std::optional<int>>();
  addValueOption(parser, "--decimals", *decimals, &countFromArgument<0, kMostDecimals>, "COUNT",
                 "At most so many digits behind the point (1)");
  addValueOption(parser, "--levels", *levels, &countFromArgument<1, kMostLevels>, "COUNT",
                 "At most so many units, as in 1km 250m (1)");
  parser.callback([=, &session] {
    session.exitCode = withUnits(session.console, [&](const auto&) {
      const auto number = NSNumberWithDistanceUnit::numberWithFloat(**value);
      const std::string text = number.formattedValueWithNumberOfDecimals(
          decimals->value_or(kDefaultDecimals), levels->value_or(1));
      return showText("text", **value, text, session.console);
    });
  });
}

void fillFraction(CLI::App& parser, Session& session) {
  const auto value = addLength(parser, "Inches, 0 to 1; nearer ends stand for what lies outside");
  parser.callback([=, &session] {
    session.exitCode =
        showText("fraction", **value, DistanceUnitsManager::fractionInchesForValue(**value),
                 session.console);
  });
}

}  // namespace

void fillUnitsCommands(CLI::App& parser, Session& session) {
  parser.require_subcommand(1);
  fillShowAndSet(parser, session);
  fillBest(*parser.add_subcommand("best", "Name the unit that a length reads best in"), session);
  fillFormat(*parser.add_subcommand("format", "Write a length with its unit"), session);
  fillFraction(*parser.add_subcommand("fraction", "The nearest thirty-second of an inch"), session);
}

}  // namespace vantrel::cli
