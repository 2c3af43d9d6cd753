#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vantrel::cli {

/// The one of `known` that `word` was probably meant to be; nothing when none is near.
std::optional<std::string> nearestWord(const std::string& word,
                                       const std::vector<std::string>& known);

}  // namespace vantrel::cli
