#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "base/Error.h"

namespace vantrel::cli {

struct ChildResult {
  int exitCode = 0;  ///< 128 + the signal's number when it was killed.
  std::string output;
};

/// Runs a program to its end, without a shell, and collects what it prints; it has this program's
/// standard input and error. kExitUnavailable when it cannot be started.
Expected<ChildResult> outputOfProgram(const std::filesystem::path& program,
                                      const std::vector<std::string>& arguments);

}  // namespace vantrel::cli
