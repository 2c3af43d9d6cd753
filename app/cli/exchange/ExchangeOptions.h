#pragma once

#include <CLI/App.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "base/Error.h"
#include "cli/plan/PlanSelection.h"

namespace vantrel::cli {

/// What plans are exchanged in.
enum class ExchangeFormat { kCalendar, kJson, kCsv, kGpx, kKml };

/// The format that "--format" names; kExitUsage for another word.
Expected<ExchangeFormat> formatFromArgument(const std::string& option, const std::string& text);

std::string_view nameOfFormat(ExchangeFormat format);

/// The format that a file's name ends in.
std::optional<ExchangeFormat> formatOfFileName(const std::string& name);

/// What `plan import` and `plan export` are given.
struct ExchangeOptions {
  static constexpr const char* kStandardStream = "-";
  std::string file = kStandardStream;
  std::optional<ExchangeFormat> format;
  DateRange range;
  bool isDryRun = false;
};

/// `options` outlives the parsing.
void addImportOptions(CLI::App& parser, ExchangeOptions& options);
void addExportOptions(CLI::App& parser, ExchangeOptions& options);

}  // namespace vantrel::cli
