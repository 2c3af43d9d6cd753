#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/Error.h"

namespace vantrel::cli {

/// What plans are exchanged in.
enum class ExchangeFormat { kCalendar, kJson, kCsv, kGpx, kKml };

/// The format that "--format" names; kExitUsage for another word.
Expected<ExchangeFormat> formatFromArgument(const std::string& option, const std::string& text);

std::string_view nameOfFormat(ExchangeFormat format);

/// The format that a file's name ends in.
std::optional<ExchangeFormat> formatOfFileName(const std::string& name);

}  // namespace vantrel::cli
