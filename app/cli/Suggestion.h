#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vantrel::cli {

/// The one of `known` that `word` was probably meant to be; nothing when none is near.
std::optional<std::string> nearestWord(const std::string& word,
                                       const std::vector<std::string>& known);

/// Names that people write in several ways made alike: lower case (ASCII), without spaces, hyphens
/// and underscores, "x" for the sign of multiplication.
std::string folded(const std::string& name);

}  // namespace vantrel::cli
