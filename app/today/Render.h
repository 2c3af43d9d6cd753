#pragma once

#include "today/Options.h"

namespace vantrel {

/// Writes a picture of the card to the file given by the options, atomically. Needs no display and
/// does not create a store. Returns the exit code; if it is not 0, after one line of error.
int render(int argc, char** argv, const Options& options);

}  // namespace vantrel
