#include "cli/exchange/ExchangeOptions.h"

#include "cli/Command.h"
#include "cli/CommandGroup.h"

namespace vantrel::cli {

namespace {

void addFile(CLI::App& parser, ExchangeOptions& options, const char* whatItIs, const char* formats,
             const char* otherwise) {
  parser.add_option("FILE", options.file, whatItIs)->type_name("");
  addValueOption(parser, "--format", options.format, formatFromArgument, formats, otherwise);
}

}  // namespace

void addImportOptions(CLI::App& parser, ExchangeOptions& options) {
  addFile(parser, options, "What to read; - (or nothing) is standard input", "ics|json",
          "Else as FILE is named, else as it begins");
  parser.add_flag("--dry-run", options.isDryRun, "Only tell what would be done");
}

void addExportOptions(CLI::App& parser, ExchangeOptions& options) {
  addFile(parser, options, "Where to; - (or nothing) is standard output", "ics|json|csv|gpx|kml",
          "Else as FILE is named, else ics");
  addTextOption(parser, "--from", options.from, "WHEN", "No earlier than this, as for plan list");
  addTextOption(parser, "--to", options.to, "WHEN", "No later than this");
}

}  // namespace vantrel::cli
