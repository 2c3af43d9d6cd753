#pragma once

#include <optional>
#include <span>
#include <string>

#include "cli/Console.h"

namespace CLI {
class App;
}

namespace vantrel::cli {

/// The output and the exit code of a run of the program.
struct Session {
  Console console;
  int exitCode = 0;
};

/// A first-level command such as `vantrel plan`. Only the parser of the group on the command line
/// is filled: every registered option costs time at start.
struct CommandGroup {
  const char* name;
  const char* description;
  /// Adds options and commands to `parser`. `session` must outlive it.
  void (*fill)(CLI::App& parser, Session& session);
};

void fillTodayCommand(CLI::App& parser, Session& session);
void fillWatchCommand(CLI::App& parser, Session& session);
void fillPlanCommands(CLI::App& parser, Session& session);
void fillCameraCommands(CLI::App& parser, Session& session);
/// `plan import` and `plan export`.
void fillExchangeCommands(CLI::App& parser, Session& session);
void fillOpenCommand(CLI::App& parser, Session& session);
void fillGeoCommands(CLI::App& parser, Session& session);
void fillUnitsCommands(CLI::App& parser, Session& session);
void fillStoreCommands(CLI::App& parser, Session& session);
/// The commands of `store` that copy and repair it.
void fillStoreUpkeepCommands(CLI::App& parser, Session& session);
void fillPlannerCommands(CLI::App& parser, Session& session);
void fillObserverCommands(CLI::App& parser, Session& session);
void fillObstacleCommands(CLI::App& parser, Session& session);
void fillLookupCommands(CLI::App& parser, Session& session);
void fillDefaultsCommands(CLI::App& parser, Session& session);

/// Returns all groups in the order of the help.
std::span<const CommandGroup> commandGroups();

/// Adds the global options and the groups, unfilled, to `root`; only `only` unless it is null.
/// `session` must outlive `root`.
void describeProgram(CLI::App& root, Session& session, const CommandGroup* only);

/// CLI11 takes "-.5" for an option, so `runProgram` hides the sign behind a NUL, which no argument
/// of a process contains.
constexpr char kHiddenSign = '\0';
/// Returns `word` without the hidden sign's NUL.
std::string typedText(const std::string& word);

/// Adds an option, or a required argument if `name` has no hyphens, that accepts any text. `target`
/// must outlive the parser.
void addTextOption(CLI::App& parser, const std::string& name, std::optional<std::string>& target,
                   const std::string& valueName, const std::string& description);

}  // namespace vantrel::cli
