#pragma once

#include <memory>
#include <string>

#include "base/Error.h"
#include "store/Planning.h"

namespace vantrel {

/// Returns the plan of a link. Links may come from any program: an error is one line that does not
/// repeat the link, with the exit code.
Expected<std::shared_ptr<Planning>> planOfLink(const std::string& link);

enum class Direction { kPrevious, kNext };
/// Returns the plan before or after this one in the order of dates, then keys; null if there is
/// none, if the plan has no date, or if the store cannot be read.
std::shared_ptr<Planning> neighbourOfPlan(const Planning& plan, Direction direction);

/// Returns the localized message for an error of planOfLink().
std::string messageForLinkError(const Error& error);

}  // namespace vantrel
