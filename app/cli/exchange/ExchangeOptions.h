#pragma once

#include <CLI/App.hpp>
#include <optional>
#include <string>

#include "cli/exchange/ExchangeFormat.h"

namespace vantrel::cli {

/// What `plan import` and `plan export` are given.
struct ExchangeOptions {
  static constexpr const char* kStandardStream = "-";
  std::string file = kStandardStream;
  std::optional<ExchangeFormat> format;
  std::optional<std::string> from;
  std::optional<std::string> to;
  bool isDryRun = false;
};

/// `options` outlives the parsing.
void addImportOptions(CLI::App& parser, ExchangeOptions& options);
void addExportOptions(CLI::App& parser, ExchangeOptions& options);

}  // namespace vantrel::cli
