#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/Error.h"
#include "cli/Console.h"
#include "cli/plan/PlanSelection.h"

namespace vantrel::cli {

enum class ExchangeFormat { kCalendar, kJson, kCsv, kGpx, kKml };

/// Returns the value of `--format`: "ics", "json", "csv", "gpx" or "kml".
std::string_view nameOfFormat(ExchangeFormat format);

/// Returns the format for the extension of a file name; `nullopt` if it has no known extension.
std::optional<ExchangeFormat> formatOfFileName(const std::string& name);

struct ExchangeOptions {
  static constexpr const char* kStandardStream = "-";
  std::string file = kStandardStream;
  std::optional<ExchangeFormat> format;
  DateRange range;        ///< Of exports.
  bool isDryRun = false;  ///< Of imports.
};

/// Reads plans from a file or standard input into the store, all of them or none, and prints which
/// were added, changed and skipped. Returns the exit code.
int importPlans(const ExchangeOptions& options, Console& console);

/// Writes plans of the store to standard output, or to a file, which is replaced only if everything
/// could be written. Returns the exit code.
int exportPlans(const ExchangeOptions& options, Console& console);

}  // namespace vantrel::cli
