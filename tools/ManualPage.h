#pragma once

#include <string>

#include "CommandTable.h"

namespace vantrel::tools {

/// A page in the man(7) language. In `prose`, a line "@OPTIONS@" stands for the program's own
/// options, "@COMMANDS@" for every command with its arguments and options; "@DATE@" and "@VERSION@"
/// may stand anywhere.
std::string manualPage(const std::string& prose, const CommandTable& table, const std::string& date,
                       const std::string& version);

}  // namespace vantrel::tools
