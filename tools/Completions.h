#pragma once

#include <string>

#include "CommandTable.h"

namespace vantrel::tools {

/// What a shell reads to complete the program's commands, options and values. Plans are asked of
/// the program itself when they are to be completed.
std::string bashCompletions(const CommandTable& table);
std::string zshCompletions(const CommandTable& table);
std::string fishCompletions(const CommandTable& table);

}  // namespace vantrel::tools
