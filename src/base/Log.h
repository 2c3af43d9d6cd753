#pragma once

#include <string_view>

namespace vantrel {

/// Writes one line to standard error, with '?' for control characters. Thread-safe.
void logLine(std::string_view text);

/// Enables or disables `logLine`; it is enabled at the start. Programs that report every error
/// themselves disable it. Thread-safe.
void setLogsEnabled(bool enabled);

}  // namespace vantrel
