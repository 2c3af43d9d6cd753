#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <exception>

#include "base/Log.h"
#include "cli/ExitCode.h"
#include "exchange/PlanExport.h"
#include "exchange/PlanImport.h"

namespace vantrel::cli {

namespace {

int run(int argc, char** argv) {
  Console console;
  ExchangeOptions options;
  CLI::App root("Started by vantrel for plan import and plan export", "vantrel-exchange");
  root.require_subcommand(1);
  root.fallthrough();
  root.add_flag_callback("--json", [&] { console.setJson(true); });
  root.add_flag_callback("--quiet", [&] { console.setQuiet(true); });
  CLI::App& importing = *root.add_subcommand("import");
  addImportOptions(importing, options);
  addExportOptions(*root.add_subcommand("export"), options);
  try {
    root.parse(argc, argv);
    return console.finish(importing.parsed() ? importPlans(options, console)
                                             : exportPlans(options, console));
  } catch (const CLI::ParseError& error) {
    return root.exit(error) == 0 ? kExitDone : kExitUsage;
  } catch (const std::exception& fault) {
    return console.fail(failure(kExitInternal, "internal error", fault.what()));
  }
}

}  // namespace

}  // namespace vantrel::cli

int main(int argc, char** argv) {
  // What goes wrong is told once, by the command.
  vantrel::setLogsEnabled(false);
  return vantrel::cli::run(argc, argv);
}
