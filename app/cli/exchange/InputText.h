#pragma once

#include <string>

#include "base/Error.h"

namespace vantrel::cli {

/// All that a file holds, or standard input for "-", a byte-order mark taken away. Fails when it
/// cannot be read (kExitMissing, kExitPermission, kExitInputOutput) or holds more than
/// kMostBytesRead (kExitBadData).
Expected<std::string> inputText(const std::string& name);

}  // namespace vantrel::cli
