#pragma once

#include "cli/Console.h"

namespace vantrel::cli {

/// Runs `store sample`: adds eight plans on the next days, each at a time with suitable light,
/// except those that the store has already. Returns the exit code.
int addSamplePlans(Console& console);

}  // namespace vantrel::cli
