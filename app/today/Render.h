#pragma once

#include "today/Options.h"

namespace vantrel {

/// Draws the card of this moment into the file that the options name, whole or not at all. Needs no
/// display and makes no store. Gives the exit code, after one line on standard error when it is not
/// 0.
int render(int argc, char** argv, const Options& options);

}  // namespace vantrel
