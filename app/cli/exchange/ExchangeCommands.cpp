#include "cli/Command.h"
#include "cli/exchange/PlanExport.h"
#include "cli/exchange/PlanImport.h"

namespace vantrel::cli {

void fillExchangeCommands(CLI::App& parser, Session& session) {
  const auto importing = addCommand(
      parser, session, "import",
      "Add or update plans from a calendar (ICS) or JSON: all of them, or none", &importPlans);
  addImportOptions(importing.parser, importing.options);
  const auto exporting =
      addCommand(parser, session, "export",
                 "Write plans for calendars (ICS), maps (GPX, KML), spreadsheets (CSV), or as JSON",
                 &exportPlans);
  addExportOptions(exporting.parser, exporting.options);
}

}  // namespace vantrel::cli
