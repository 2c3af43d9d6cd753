#pragma once

#include <optional>
#include <span>
#include <string>

#include "cli/Console.h"

namespace CLI {
class App;
}

namespace vantrel::cli {

/// What a command is given besides its own arguments, and where it leaves its exit code.
struct Session {
  Console console;
  int exitCode = 0;
};

/// One word behind `vantrel`. Only the group that is asked for fills its parser: every option that
/// is registered costs time at every start.
struct CommandGroup {
  const char* name;
  const char* description;
  /// Adds options, commands and their callbacks, which run in `session` (it outlives the parser).
  void (*fill)(CLI::App& parser, Session& session);
};

void fillTodayCommand(CLI::App& parser, Session& session);
void fillWatchCommand(CLI::App& parser, Session& session);
void fillPlanCommands(CLI::App& parser, Session& session);
void fillCameraCommands(CLI::App& parser, Session& session);
/// "import" and "export" of the plans.
void fillExchangeCommands(CLI::App& parser, Session& session);
void fillOpenCommand(CLI::App& parser, Session& session);
void fillGeoCommands(CLI::App& parser, Session& session);
void fillUnitsCommands(CLI::App& parser, Session& session);
void fillStoreCommands(CLI::App& parser, Session& session);
/// Those of the store's commands that move and repair it.
void fillStoreUpkeepCommands(CLI::App& parser, Session& session);
void fillPlannerCommands(CLI::App& parser, Session& session);
void fillObserverCommands(CLI::App& parser, Session& session);
void fillObstacleCommands(CLI::App& parser, Session& session);
void fillLookupCommands(CLI::App& parser, Session& session);
void fillDefaultsCommands(CLI::App& parser, Session& session);

/// All of them, in the order of the help.
std::span<const CommandGroup> commandGroups();

/// What `vantrel` knows everywhere, and the words of its groups, none of them filled yet: of `only`
/// where that is given, since each costs time at every start. `session` outlives the parser.
void describeProgram(CLI::App& root, Session& session, const CommandGroup* only);

/// The library takes "-.5" for an option. No argument of a program holds a NUL, so that one in
/// front hides the sign until typedText() takes it away.
constexpr char kHiddenSign = '\0';
/// What was typed for an argument without a name, as the parser has it: "-.5" comes in disguise.
std::string typedText(const std::string& word);

/// An option, or an argument that must be given, of any text; `target` outlives the parsing.
void addTextOption(CLI::App& parser, const std::string& name, std::optional<std::string>& target,
                   const std::string& valueName, const std::string& description);

}  // namespace vantrel::cli
