#pragma once

#include <string>

#include "cli/Console.h"

namespace vantrel::cli {

/// Answers each line of `file` ("-" is standard input) with one line: the curve between the two
/// pins that it names. Blank lines and those that begin with # are passed over. A line that makes
/// no sense is told, answered with an empty line (an object with "line" and "error" in JSON), and
/// ends it all with kExitBadData. Lines are answered as they come: a program may talk to this one.
int answerCurves(const std::string& file, bool isLonLat, Console& console);

}  // namespace vantrel::cli
