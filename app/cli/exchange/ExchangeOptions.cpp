#include "cli/exchange/ExchangeOptions.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include "base/Ascii.h"
#include "cli/Command.h"
#include "cli/CommandGroup.h"
#include "common/ExitCode.h"

namespace vantrel::cli {

namespace {

struct FormatName {
  std::string_view name;
  ExchangeFormat format;
};
constexpr std::array kNames = {
    FormatName{"ics", ExchangeFormat::kCalendar}, FormatName{"json", ExchangeFormat::kJson},
    FormatName{"csv", ExchangeFormat::kCsv},      FormatName{"gpx", ExchangeFormat::kGpx},
    FormatName{"kml", ExchangeFormat::kKml},
};

std::optional<ExchangeFormat> formatNamed(std::string_view name) {
  for (const auto& known : kNames) {
    if (known.name == name) return known.format;
  }
  return std::nullopt;
}

void addFile(CLI::App& parser, ExchangeOptions& options, const char* whatItIs, const char* formats,
             const char* otherwise) {
  parser.add_option("FILE", options.file, whatItIs)->type_name("");
  addValueOption(parser, "--format", options.format, formatFromArgument, formats, otherwise);
}

}  // namespace

Expected<ExchangeFormat> formatFromArgument(const std::string& option, const std::string& text) {
  if (const auto format = formatNamed(text)) return *format;
  return invalidArgument(option, text, "ics, json, csv, gpx or kml");
}

std::string_view nameOfFormat(ExchangeFormat format) {
  for (const auto& known : kNames) {
    if (known.format == format) return known.name;
  }
  return {};
}

std::optional<ExchangeFormat> formatOfFileName(const std::string& name) {
  const std::string extension = asciiLower(std::filesystem::path(name).extension().string());
  return extension.empty() ? std::nullopt : formatNamed(std::string_view(extension).substr(1));
}

void addImportOptions(CLI::App& parser, ExchangeOptions& options) {
  addFile(parser, options, "What to read; - (or nothing) is standard input", "ics|json",
          "Else as FILE is named, else as it begins");
  parser.add_flag("--dry-run", options.isDryRun, "Only tell what would be done");
}

void addExportOptions(CLI::App& parser, ExchangeOptions& options) {
  addFile(parser, options, "Where to; - (or nothing) is standard output", "ics|json|csv|gpx|kml",
          "Else as FILE is named, else ics");
  addRangeOptions(parser, options.range);
}

}  // namespace vantrel::cli
