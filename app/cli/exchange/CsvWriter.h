#pragma once

#include "cli/Console.h"
#include "cli/plan/PlanSelection.h"

namespace vantrel::cli {

/// The plans as comma-separated values after RFC 4180, in UTF-8: a line of column names, then a
/// line for each plan. An apostrophe stands before a text that a spreadsheet would take for a
/// formula.
void writeCsv(const Plans& plans, const TextSink& print);

}  // namespace vantrel::cli
