#pragma once

#include <string>

#include "base/Error.h"

namespace vantrel::cli {

/// The whole text of a file, or of standard input for "-": UTF-8, a byte-order mark taken away.
/// Fails when it cannot be read (kExitMissing, kExitPermission, kExitInputOutput), holds more than
/// kMostBytesRead, or is no text (kExitBadData).
Expected<std::string> inputText(const std::string& name);

}  // namespace vantrel::cli
