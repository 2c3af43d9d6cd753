#pragma once

#include <string_view>

namespace vantrel {

/// Writes one line to standard error; control characters are shown as '?'. Any thread.
void logLine(std::string_view text);

/// Whether `logLine` writes at all, as it does at first. A program that tells every failure itself
/// switches it off. Any thread.
void setLogsEnabled(bool enabled);

}  // namespace vantrel
