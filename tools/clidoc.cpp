// Generates manual pages and shell completions from the programs' tables of commands and options:
//   clidoc man|bash|zsh|fish vantrel|vantrel-today OUT [PROSE DATE VERSION]
#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <vector>

#include "CommandTable.h"
#include "Completions.h"
#include "ManualPage.h"
#include "cli/CommandGroup.h"
#include "today/Options.h"

namespace {

using vantrel::tools::CommandTable;

CommandTable tableOfTerminalProgram() {
  vantrel::cli::Session session;
  CLI::App root;
  vantrel::cli::describeProgram(root, session, nullptr);
  for (const auto& group : vantrel::cli::commandGroups()) {
    group.fill(*root.get_subcommand(group.name), session);
  }
  return vantrel::tools::commandTable(root);
}

CommandTable tableOfWindow() {
  vantrel::Options options;
  CLI::App app;
  vantrel::Options::describe(app, options);
  return vantrel::tools::commandTable(app);
}

std::optional<std::string> made(const std::vector<std::string>& arguments,
                                const CommandTable& table) {
  const std::string& kind = arguments[0];
  if (kind == "bash") return vantrel::tools::bashCompletions(table);
  if (kind == "zsh") return vantrel::tools::zshCompletions(table);
  if (kind == "fish") return vantrel::tools::fishCompletions(table);
  if (kind != "man" || arguments.size() != 6) return std::nullopt;
  std::ifstream prose(arguments[3]);
  if (!prose) return std::nullopt;
  const std::string text{std::istreambuf_iterator<char>(prose), {}};
  return vantrel::tools::manualPage(text, table, arguments[4], arguments[5]);
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments.size() < 3) return 64;
  const bool isWindow = arguments[1] == "vantrel-today";
  const auto text = made(arguments, isWindow ? tableOfWindow() : tableOfTerminalProgram());
  std::ofstream file(arguments[2], std::ios::binary);
  if (text && file << *text && file.flush()) return 0;
  std::cerr << "clidoc: cannot create " << arguments[2] << "\n";
  return 1;
}
