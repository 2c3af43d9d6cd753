#pragma once

#include <string>

#include "CommandTable.h"

namespace vantrel::tools {

/// Return the completion script of a shell for the program's commands, options and values. To
/// complete plans, the script runs the program.
std::string bashCompletions(const CommandTable& table);
std::string zshCompletions(const CommandTable& table);
std::string fishCompletions(const CommandTable& table);

}  // namespace vantrel::tools
