#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/Error.h"

namespace vantrel::cli {

/// The one of `known` that `word` was probably meant to be; nothing when none is near.
std::optional<std::string> nearestWord(const std::string& word,
                                       const std::vector<std::string>& known);

/// Names that people write in several ways made alike: lower case (ASCII), without spaces, hyphens
/// and underscores, "x" for the sign of multiplication.
std::string folded(const std::string& name);

/// The usage error for a `text` that does not name one record: `why`, then the first ten
/// candidates, a line each.
Error ambiguous(const std::string& text, const std::string& why,
                const std::vector<std::string>& candidates);

}  // namespace vantrel::cli
