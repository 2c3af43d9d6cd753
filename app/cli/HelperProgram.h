#pragma once

#include <string>
#include <vector>

#include "base/Error.h"

namespace vantrel::cli {

/// Goes on as one of the programs that do what few starts of `vantrel` need: they link the
/// libraries that would cost every start. It lies beside this program or under libexec, and finds
/// the same resources. Returns only when it cannot be started.
Error continueAs(const std::string& program, const std::vector<std::string>& arguments);

}  // namespace vantrel::cli
