#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <exception>
#include <string>
#include <vector>

#include "base/Log.h"
#include "cli/CommandGroup.h"
#include "cli/ExitCode.h"
#include "cli/Suggestion.h"

namespace vantrel::cli {

namespace {

constexpr std::array kGroups = {
    CommandGroup{"today", "Show the next plans, as the widget does", &fillTodayCommand},
    CommandGroup{"plan", "Add, list, show, edit and remove plans", &fillPlanCommands},
    CommandGroup{"open", "Show the plan that a vantrel:// link names", &fillOpenCommand},
    CommandGroup{"geo", "Bearing, distance and elevation between two points", &fillGeoCommands},
    CommandGroup{"units", "Choose metric or imperial units; write lengths in them",
                 &fillUnitsCommands},
    CommandGroup{"store", "Look into the store, or fill it with samples", &fillStoreCommands},
    CommandGroup{"planner", "Preset the planner of the main application", &fillPlannerCommands},
    CommandGroup{"observer", "Where the planner stands, how high, and its horizon",
                 &fillObserverCommands},
    CommandGroup{"obstacle", "A summit or a building, seen from the observer",
                 &fillObstacleCommands},
    CommandGroup{"defaults", "Read and write the settings", &fillDefaultsCommands},
};

constexpr const char* kExamples = R"(Examples:
  vantrel today --expanded
  vantrel plan add --name "Blue hour from the bridge" --date "2026-07-21 22:05"
  vantrel plan list --from now
  vantrel store sample)";

constexpr const char* kEverywhere =
    "Everywhere: --json, --quiet, --color auto|always|never, --help. See vantrel --help.";

/// Help without the remarks that the library adds to options; descriptions say what is needed.
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

/// "plan add"; empty for the program itself.
std::string commandPath(const CLI::App& parser) {
  const CLI::App* above = parser.get_parent();
  if (!above) return "";
  const std::string before = commandPath(*above);
  return before.empty() ? parser.get_name() : before + " " + parser.get_name();
}

std::string helpCommand(const CLI::App& parser) {
  const std::string path = commandPath(parser);
  return path.empty() ? "vantrel --help" : "vantrel " + path + " --help";
}

/// The error for a word that none of `known` is.
Error unknownWord(const std::string& word, const char* kind, const std::vector<std::string>& known,
                  const CLI::App& parser) {
  std::string why = std::string("no such ") + kind;
  const auto nearest = nearestWord(word, known);
  if (nearest == word) {
    why = "belongs behind " + commandPath(parser);
  } else if (nearest) {
    why += "; did you mean " + *nearest + "?";
  } else {
    why += "; see " + helpCommand(parser);
  }
  return failure(kExitUsage, word, why);
}

/// The group that the first word of the line names; null for none.
const CommandGroup* groupAskedFor(const std::vector<std::string>& arguments) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& word = arguments[i];
    if (word == "--color") ++i;
    if (word.starts_with('-')) continue;
    const auto group = std::find_if(kGroups.begin(), kGroups.end(),
                                    [&](const auto& one) { return one.name == word; });
    return group == kGroups.end() ? nullptr : &*group;
  }
  return nullptr;
}

CLI::App* commandNamed(CLI::App& parser, const std::string& name) {
  for (auto* command : parser.get_subcommands({})) {
    if (command->get_name() == name) return command;
  }
  return nullptr;
}

std::vector<std::string> commandNames(const CLI::App& parser) {
  std::vector<std::string> names;
  for (const auto* command : parser.get_subcommands({})) names.push_back(command->get_name());
  return names;
}

std::vector<std::string> optionNames(const CLI::App& parser) {
  std::vector<std::string> names;
  for (const CLI::App* at = &parser; at; at = at->get_parent()) {
    for (const auto* option : at->get_options()) {
      for (const auto& name : option->get_lnames()) names.push_back("--" + name);
    }
  }
  return names;
}

/// The words that name commands, walked down from `root`; what is filled on the way decides what
/// can be parsed. The command that they lead to, else what is wrong.
Expected<CLI::App*> fillCommands(CLI::App& root, Session& session,
                                 const std::vector<std::string>& arguments) {
  CLI::App* parser = &root;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& word = arguments[i];
    if (word == "--color") ++i;
    if (word.starts_with('-')) continue;
    CLI::App* below = commandNamed(*parser, word);
    if (!below) {
      return tl::make_unexpected(unknownWord(word, "command", commandNames(*parser), *parser));
    }
    if (parser == &root) groupAskedFor(arguments)->fill(*below, session);
    parser = below;
    if (parser->get_subcommands({}).empty()) break;
  }
  return parser;
}

/// Whether the word is an option behind which a value must stand.
bool wantsValue(const CLI::App& parser, const std::string& word) {
  for (const CLI::App* at = &parser; at; at = at->get_parent()) {
    if (const auto* option = at->get_option_no_throw(word)) {
      return option->get_items_expected_min() > 0;
    }
  }
  return false;
}

/// The library takes "-.5" for an option. No argument of a program holds a NUL, so that one in
/// front hides the sign until typedText() takes it away.
constexpr char kHidden = '\0';

std::vector<std::string> withHiddenSigns(std::vector<std::string> arguments,
                                         const CLI::App& parser) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    std::string& word = arguments[i];
    const bool isNumber = word.size() > 2 && word.starts_with("-.") && std::isdigit(word[2]);
    if (isNumber && !(i > 0 && wantsValue(parser, arguments[i - 1]))) word.insert(0, 1, kHidden);
  }
  return arguments;
}

bool isInfiniteOrNaN(const std::string& word) {
  double number = 0;
  const char* end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, number);
  return stop == end && error == std::errc() && !std::isfinite(number);
}

/// The command that the line named, or the last word on the way to one.
const CLI::App& deepestParsed(const CLI::App& root) {
  const CLI::App* parser = &root;
  while (!parser->get_subcommands().empty()) parser = parser->get_subcommands().front();
  return *parser;
}

int failUsage(const CLI::ParseError& error, const CLI::App& root, Session& session) {
  const CLI::App& parser = deepestParsed(root);
  for (const auto& left : root.remaining(true)) {
    const std::string word = typedText(left);
    if (isInfiniteOrNaN(word)) {
      return session.console.fail(failure(kExitUsage, word, "allowed are finite numbers"));
    }
    if (left.starts_with('-')) {
      return session.console.fail(
          unknownWord(word.substr(0, word.find('=')), "option", optionNames(parser), parser));
    }
    return session.console.fail(
        failure(kExitUsage, word, "one argument too many; see " + helpCommand(parser)));
  }
  if (!parser.get_subcommands({}).empty()) {
    session.console.tell(root.help());
    return kExitUsage;
  }
  return session.console.fail(failure(kExitUsage, commandPath(parser),
                                      std::string(error.what()) + "; see " + helpCommand(parser)));
}

void addEverywhere(CLI::App& root, Session& session) {
  root.set_help_flag("-h,--help", "Show this help and end");
  root.set_version_flag("--version", std::string("vantrel ") + VANTREL_VERSION,
                        "Show the version and end");
  root.add_flag_callback(
      "--json", [&] { session.console.setJson(true); }, "Answer in JSON");
  root.add_flag_callback(
      "-q,--quiet", [&] { session.console.setQuiet(true); }, "No hints on standard error");
  const auto setColor = [&](const CLI::results_t& values) {
    const std::string& mode = values.front();
    if (mode == "always") {
      session.console.setColorMode(Console::ColorMode::kAlways);
    } else if (mode == "never") {
      session.console.setColorMode(Console::ColorMode::kNever);
    } else if (mode != "auto") {
      throw CLI::ValidationError("--color \"" + mode + "\": allowed are auto, always, never");
    }
    return true;
  };
  root.add_option("--color", setColor, "Colour: auto (on a terminal), always, never")
      ->type_name("WHEN");
}

int run(const std::vector<std::string>& arguments) {
  Session session;
  session.console.setColorMode(Console::ColorMode::kAuto);
  CLI::App root("The next photo shoots that you planned", "vantrel");
  root.fallthrough();
  root.require_subcommand(1);
  root.group("Commands");
  root.formatter(std::make_shared<HelpFormatter>());
  root.footer(kEverywhere);
  addEverywhere(root, session);
  // Each costs time at every start: the others only to be listed, or to suggest one of them.
  const CommandGroup* asked = groupAskedFor(arguments);
  for (const auto& group : kGroups) {
    if (!asked || asked == &group) root.add_subcommand(group.name, group.description);
  }
  root.footer(kExamples);
  try {
    const auto parser = fillCommands(root, session, arguments);
    if (!parser) return session.console.finish(session.console.fail(parser.error()));
    auto words = withHiddenSigns(arguments, **parser);
    std::reverse(words.begin(), words.end());
    root.parse(std::move(words));
  } catch (const CLI::CallForHelp&) {
    session.console.print(root.help());
  } catch (const CLI::CallForVersion& version) {
    session.console.print(std::string(version.what()) + "\n");
  } catch (const CLI::ParseError& error) {
    session.exitCode = failUsage(error, root, session);
  } catch (const std::exception& fault) {
    session.exitCode = session.console.fail(failure(kExitInternal, "internal error", fault.what()));
  }
  return session.console.finish(session.exitCode);
}

}  // namespace

std::string typedText(const std::string& word) {
  return word.substr(word.starts_with(kHidden) ? 1 : 0);
}

void addTextOption(CLI::App& parser, const std::string& name, std::optional<std::string>& target,
                   const std::string& valueName, const std::string& description) {
  const auto keep = [&target](const CLI::results_t& values) {
    target = values.front();
    return true;
  };
  parser.add_option(name, keep, description)->type_name(valueName);
}

}  // namespace vantrel::cli

int main(int argc, char** argv) {
  // What goes wrong is told once, by the command.
  vantrel::setLogsEnabled(false);
  return vantrel::cli::run(std::vector<std::string>(argv + 1, argv + argc));
}
