#pragma once

#include <string>

#include "cli/Console.h"

namespace vantrel::cli {

/// Prints the curve between the two points on each line of `file` ("-" is standard input), one line
/// each. Skips blank lines and those that begin with #. An invalid line is reported, its answer is
/// empty (in JSON an object with "line" and "error"), and the exit code becomes kExitBadData.
/// Answers are flushed whenever all lines read so far are answered, for callers that write to a
/// pipe and wait. Returns the exit code.
int answerCurves(const std::string& file, bool isLonLat, Console& console);

}  // namespace vantrel::cli
