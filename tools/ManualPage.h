#pragma once

#include <string>

#include "CommandTable.h"

namespace vantrel::tools {

/// Returns a page in the man(7) language. In `prose`, replaces a line "@OPTIONS@" by the program's
/// options, "@COMMANDS@" by all commands with their arguments and options, and "@DATE@" and
/// "@VERSION@" anywhere.
std::string manualPage(const std::string& prose, const CommandTable& table, const std::string& date,
                       const std::string& version);

}  // namespace vantrel::tools
