#include <CLI/App.hpp>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cli/CommandGroup.h"
#include "cli/ExchangeOptions.h"
#include "cli/HelperProgram.h"

namespace vantrel::cli {

namespace {

int exchange(const std::string& direction, const ExchangeOptions& options, Console& console) {
  std::vector<std::string> words = {direction};
  if (console.isJson()) words.emplace_back("--json");
  if (console.isQuiet()) words.emplace_back("--quiet");
  const auto more = argumentsOf(options);
  words.insert(words.end(), more.begin(), more.end());
  return console.fail(continueAs("vantrel-exchange", words));
}

}  // namespace

void fillExchangeCommands(CLI::App& parser, Session& session) {
  const auto imported = std::make_shared<ExchangeOptions>();
  CLI::App& importing = *parser.add_subcommand(
      "import", "Add or update plans from a calendar (ICS) or JSON: all of them, or none");
  addImportOptions(importing, *imported);
  importing.callback(
      [=, &session] { session.exitCode = exchange("import", *imported, session.console); });

  const auto exported = std::make_shared<ExchangeOptions>();
  CLI::App& exporting = *parser.add_subcommand(
      "export", "Write plans for calendars (ICS), maps (GPX, KML), spreadsheets (CSV), or as JSON");
  addExportOptions(exporting, *exported);
  exporting.callback(
      [=, &session] { session.exitCode = exchange("export", *exported, session.console); });
}

}  // namespace vantrel::cli
