#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace vantrel::tools {

/// What completion offers for a value.
enum class Offer { kNothing, kWords, kFile, kPlan, kZone };

/// An option, or an argument without a name.
struct TableOption {
  std::vector<std::string> names;  ///< "-q", "--quiet"; one name for an argument.
  std::string value;               ///< "DEGREES"; empty for a flag.
  bool isValueOptional = false;
  bool isRequired = false;
  std::string description;
  Offer offer = Offer::kNothing;
  std::vector<std::string> words;  ///< For Offer::kWords.
};

/// A command with its own options and arguments; it also accepts the options of those above it.
struct TableCommand {
  std::string path;  ///< "vantrel plan add"
  std::string description;
  std::vector<TableOption> options;
  std::vector<TableOption> arguments;

  std::string name() const;   ///< "add"
  std::string above() const;  ///< "vantrel plan"; empty for the program.
};

/// The program first, each command after the one above it.
using CommandTable = std::vector<TableCommand>;

/// Returns the commands, options and arguments of a parser.
CommandTable commandTable(const CLI::App& program);

/// Returns the direct subcommands of `command`.
CommandTable commandsBelow(const CommandTable& table, const TableCommand& command);

}  // namespace vantrel::tools
