#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "base/Error.h"

namespace vantrel::cli {

/// Where one of the programs lies that do what few starts of `vantrel` need, and link the libraries
/// that would cost every start: beside this program as it is built, or under libexec. What else
/// bears the name, in the current folder or on the PATH, is none of ours. kExitUnavailable where
/// there is none.
Expected<std::filesystem::path> helperProgram(const std::string& name);

/// Goes on as that program, which finds the same resources. Returns only when it cannot be started.
Error continueAs(const std::string& name, const std::vector<std::string>& arguments);

}  // namespace vantrel::cli
