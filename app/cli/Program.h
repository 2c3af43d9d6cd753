#pragma once

#include <string>
#include <vector>

namespace vantrel::cli {

/// Runs the command in `arguments` (without the program's name), reports errors on standard error
/// and returns the exit code.
int runProgram(const std::vector<std::string>& arguments);

}  // namespace vantrel::cli
