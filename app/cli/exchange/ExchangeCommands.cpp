#include "cli/exchange/ExchangeCommands.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <utility>

#include "base/Ascii.h"
#include "cli/Arguments.h"
#include "cli/Command.h"
#include "cli/Suggestion.h"

namespace vantrel::cli {

namespace {

constexpr std::array<std::pair<std::string_view, ExchangeFormat>, 5> kFormats = {{
    {"ics", ExchangeFormat::kCalendar},
    {"json", ExchangeFormat::kJson},
    {"csv", ExchangeFormat::kCsv},
    {"gpx", ExchangeFormat::kGpx},
    {"kml", ExchangeFormat::kKml},
}};

Expected<ExchangeFormat> formatFromArgument(const std::string& option, const std::string& text) {
  for (const auto& [known, format] : kFormats) {
    if (known == text) return format;
  }
  return invalidArgument(option, text, "ics, json, csv, gpx or kml");
}

}  // namespace

std::string_view nameOfFormat(ExchangeFormat format) {
  return std::find_if(kFormats.begin(), kFormats.end(),
                      [&](const auto& known) { return known.second == format; })
      ->first;
}

std::optional<ExchangeFormat> formatOfFileName(const std::string& name) {
  const std::string extension = asciiUpper(std::filesystem::path(name).extension().string());
  for (const auto& [known, format] : kFormats) {
    if (extension == "." + asciiUpper(known)) return format;
  }
  return std::nullopt;
}

void fillExchangeCommands(CLI::App& parser, Session& session) {
  const auto [importing, imported] = addCommand(
      parser, session, "import",
      "Add or update plans from a calendar (ICS) or JSON: all of them, or none", &importPlans);
  importing.add_option("FILE", imported.file, "File to read; - (default) is standard input")
      ->type_name("");
  addValueOption(importing, "--format", imported.format, formatFromArgument, "ics|json",
                 "Default: by the extension of FILE, otherwise by its first character");
  importing.add_flag("--dry-run", imported.isDryRun, "Only print what would be done");
  const auto [exporting, exported] =
      addCommand(parser, session, "export",
                 "Write plans for calendars (ICS), maps (GPX, KML), spreadsheets (CSV), or as JSON",
                 &exportPlans);
  exporting.add_option("FILE", exported.file, "File to write; - (default) is standard output")
      ->type_name("");
  addValueOption(exporting, "--format", exported.format, formatFromArgument, "ics|json|csv|gpx|kml",
                 "Default: by the extension of FILE, otherwise ics");
  addRangeOptions(exporting, exported.range);
}

}  // namespace vantrel::cli
