#pragma once

#include <string>
#include <vector>

namespace vantrel::cli {

/// Does what the words behind the program's name ask for, and tells what went wrong; the exit code.
int runProgram(const std::vector<std::string>& arguments);

}  // namespace vantrel::cli
