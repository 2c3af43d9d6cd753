#pragma once

#include "cli/Console.h"
#include "cli/exchange/ExchangeOptions.h"

namespace vantrel::cli {

/// `plan import`: reads plans from a file or standard input into the store, all of them or none,
/// and tells which were added, changed and skipped. Gives the exit code.
int importPlans(const ExchangeOptions& options, Console& console);

}  // namespace vantrel::cli
