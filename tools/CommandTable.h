#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace vantrel::tools {

/// What a shell offers where a value is to be typed.
enum class Offer { kNothing, kWords, kFile, kPlan, kZone };

/// An option, or an argument without a name.
struct TableOption {
  std::vector<std::string> names;  ///< "-q", "--quiet"; of an argument its one word.
  std::string value;               ///< "DEGREES"; empty for a flag.
  bool isValueOptional = false;
  bool isRequired = false;
  std::string description;
  Offer offer = Offer::kNothing;
  std::vector<std::string> words;  ///< For Offer::kWords.
};

/// One command with what only it knows; what those above it know holds for it too.
struct TableCommand {
  std::string path;  ///< "vantrel plan add"
  std::string description;
  std::vector<TableOption> options;
  std::vector<TableOption> arguments;

  std::string name() const;   ///< "add"
  std::string above() const;  ///< "vantrel plan"; empty for the program.
};

/// The program first, every command behind the one above it.
using CommandTable = std::vector<TableCommand>;

/// Reads what a parser knows.
CommandTable commandTable(const CLI::App& program);

/// The commands right below `command`.
CommandTable commandsBelow(const CommandTable& table, const TableCommand& command);

}  // namespace vantrel::tools
