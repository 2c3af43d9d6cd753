#include "CommandTable.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <iterator>
#include <sstream>

namespace vantrel::tools {

namespace {

/// Returns the words of "auto|always|never"; empty if `text` is one word.
std::vector<std::string> alternatives(const std::string& text) {
  std::vector<std::string> words;
  std::istringstream stream(text);
  for (std::string word; std::getline(stream, word, '|');) words.push_back(word);
  return words.size() > 1 ? words : std::vector<std::string>();
}

Offer offerFor(const std::string& value) {
  if (value == "PLAN") return Offer::kPlan;
  if (value == "ZONE") return Offer::kZone;
  if (value.starts_with("FILE") || value == "OLD" || value == "NEW") return Offer::kFile;
  return Offer::kNothing;
}

TableOption tableOption(const CLI::Option& option) {
  TableOption result;
  result.description = option.get_description();
  result.isRequired = option.get_required();
  std::string value = option.get_option_text();
  if (value.empty() && option.get_items_expected_max() > 0) value = option.get_type_name();
  if (value.starts_with('[') && value.ends_with(']')) {
    result.isValueOptional = true;
    value = value.substr(1, value.size() - 2);
  }
  if (option.get_positional()) {
    result.names = {option.get_name(true)};
    result.value = value.empty() ? result.names.front() : value;
  } else {
    for (const auto& name : option.get_snames()) result.names.push_back("-" + name);
    for (const auto& name : option.get_lnames()) result.names.push_back("--" + name);
    result.value = value;
  }
  result.words = alternatives(result.value);
  result.offer = result.words.empty() ? offerFor(result.value) : Offer::kWords;
  return result;
}

void addCommands(const CLI::App& parser, const std::string& above, CommandTable& table) {
  TableCommand command;
  command.path = above.empty() ? parser.get_name() : above + " " + parser.get_name();
  command.description = parser.get_description();
  for (const auto* option : parser.get_options()) {
    if (option->get_group().empty()) continue;  // hidden
    // Help is the same everywhere; the program's entry describes it.
    if (option == parser.get_help_ptr() && !above.empty()) continue;
    (option->get_positional() ? command.arguments : command.options)
        .push_back(tableOption(*option));
  }
  const std::string path = command.path;
  table.push_back(std::move(command));
  for (const auto* below : parser.get_subcommands({})) {
    if (!below->get_group().empty()) addCommands(*below, path, table);
  }
}

}  // namespace

std::string TableCommand::name() const {
  return path.substr(path.rfind(' ') + 1);
}

std::string TableCommand::above() const {
  const auto space = path.rfind(' ');
  return space == std::string::npos ? "" : path.substr(0, space);
}

CommandTable commandTable(const CLI::App& program) {
  CommandTable table;
  addCommands(program, "", table);
  return table;
}

CommandTable commandsBelow(const CommandTable& table, const TableCommand& command) {
  CommandTable below;
  std::copy_if(table.begin(), table.end(), std::back_inserter(below),
               [&](const auto& one) { return one.above() == command.path; });
  return below;
}

}  // namespace vantrel::tools
