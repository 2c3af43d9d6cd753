#include "cli/CommandGroup.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <array>
#include <memory>

#include "cli/Arguments.h"
#include "cli/Command.h"

namespace vantrel::cli {

namespace {

constexpr std::array kGroups = {
    CommandGroup{"today", "Show the next plans, as the widget does", &fillTodayCommand},
    CommandGroup{"watch", "Print the next plans whenever they change, until interrupted",
                 &fillWatchCommand},
    CommandGroup{"plan", "Add, list, show, edit, copy, remove, import and export plans",
                 &fillPlanCommands},
    CommandGroup{"camera", "Add, list, show and remove custom cameras", &fillCameraCommands},
    CommandGroup{"open", "Show the plan of a vantrel:// link", &fillOpenCommand},
    CommandGroup{"geo", "Bearing, distance and elevation between two points", &fillGeoCommands},
    CommandGroup{"units", "Choose metric or imperial units; format lengths", &fillUnitsCommands},
    CommandGroup{"store", "Inspect, copy and repair the store; add sample plans",
                 &fillStoreCommands},
    CommandGroup{"planner", "Preset the planner of the main application", &fillPlannerCommands},
    CommandGroup{"observer", "Show and set the planner's observer: place, altitude, horizon",
                 &fillObserverCommands},
    CommandGroup{"obstacle", "Show and set an obstacle, such as a summit, seen from the observer",
                 &fillObstacleCommands},
    CommandGroup{"lookup", "Ask a web service for a place's altitude or time zone",
                 &fillLookupCommands},
    CommandGroup{"defaults", "Read and write the settings", &fillDefaultsCommands},
};

constexpr const char* kExamples = R"(Examples:
  vantrel today --expanded
  vantrel plan add --name "Blue hour from the bridge" --date "2026-07-21 22:05"
  vantrel plan list --from now
  vantrel store sample)";

constexpr const char* kEverywhere =
    "Everywhere: --json, --quiet, --color auto|always|never, --help. See vantrel --help.";

/// Omits the remarks that CLI11 adds to options.
class HelpFormatter : public CLI::Formatter {
 public:
  HelpFormatter() {
    column_width(30);
    label("SUBCOMMAND", "COMMAND");
    label("Positionals", "Arguments");
  }
  std::string make_option_opts(const CLI::Option* option) const override {
    const bool takesValue = option->get_type_size() != 0 && !option->get_type_name().empty();
    return takesValue ? " " + option->get_type_name() : "";
  }
};

void addEverywhere(CLI::App& root, Session& session) {
  root.set_help_flag("-h,--help", "Show this help and exit");
  root.set_version_flag("--version", std::string("vantrel ") + VANTREL_VERSION,
                        "Print version and exit");
  root.add_flag_callback(
      "--json", [&] { session.console.setJson(true); }, "Print JSON");
  root.add_flag_callback(
      "-q,--quiet", [&] { session.console.setQuiet(true); }, "No hints on standard error");
  const auto setColor = [&](const CLI::results_t& values) {
    const std::string& mode = values.front();
    if (mode == "always" || mode == "never") {
      session.console.setColor(mode == "always");
    } else if (mode != "auto") {
      throw ArgumentError{invalidArgument("--color", mode, "auto, always or never").value()};
    }
    return true;
  };
  root.add_option("--color", setColor, "When to use colour; auto: on a terminal that has it")
      ->type_name("auto|always|never");
  root.add_flag_callback(
      "--no-color", [&] { session.console.setColor(false); }, "The same as --color never");
}

}  // namespace

std::span<const CommandGroup> commandGroups() {
  return kGroups;
}

void describeProgram(CLI::App& root, Session& session, const CommandGroup* only) {
  root.name("vantrel");
  root.description("The next photo shoots that you planned");
  root.fallthrough();
  root.require_subcommand(1);
  root.group("Commands");
  root.formatter(std::make_shared<HelpFormatter>());
  root.footer(kEverywhere);
  addEverywhere(root, session);
  for (const auto& group : kGroups) {
    if (!only || only == &group) root.add_subcommand(group.name, group.description);
  }
  root.footer(kExamples);
}

std::string typedText(const std::string& word) {
  return word.substr(word.starts_with(kHiddenSign) ? 1 : 0);
}

void addTextOption(CLI::App& parser, const std::string& name, std::optional<std::string>& target,
                   const std::string& valueName, const std::string& description) {
  const auto anything = [](const std::string& /*name*/, const std::string& text) {
    return Expected<std::string>(text);
  };
  addValueOption(parser, name, target, anything, valueName, description);
}

}  // namespace vantrel::cli
