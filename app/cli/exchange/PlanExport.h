#pragma once

#include "cli/Console.h"
#include "cli/exchange/ExchangeOptions.h"

namespace vantrel::cli {

/// `plan export`: writes the plans of the store to a file, which is there whole or not at all, or
/// to standard output. Gives the exit code.
int exportPlans(const ExchangeOptions& options, Console& console);

}  // namespace vantrel::cli
