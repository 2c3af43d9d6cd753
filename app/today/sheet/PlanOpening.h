#pragma once

#include <memory>
#include <string>

#include "base/Error.h"
#include "store/Planning.h"

namespace vantrel {

/// The plan that a link names, in the store as it is now. Links come from anywhere: whatever is
/// wrong with one is told in one line that does not repeat it, with the exit code to end with.
Expected<std::shared_ptr<Planning>> planOfLink(const std::string& link);

enum class Direction { kPrevious, kNext };
/// The plan before or after this one in the order of dates, then keys. Null if there is none, if
/// the plan has no date, or if the store cannot be read.
std::shared_ptr<Planning> neighbourOfPlan(const Planning& plan, Direction direction);

/// What to tell the user of the window about such an error, in their language.
std::string messageForLinkError(const Error& error);

}  // namespace vantrel
