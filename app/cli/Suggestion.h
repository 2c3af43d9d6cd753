#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Error.h"

namespace vantrel::cli {

/// The one of `known` that is most similar to `word`; `nullopt` if none is similar. O(n).
std::optional<std::string> nearestWord(const std::string& word,
                                       const std::vector<std::string>& known);

/// Returns `name` in a form that is equal for common spellings: lower case (ASCII), without spaces,
/// hyphens and underscores, "x" for the multiplication sign.
std::string folded(const std::string& name);

/// Returns the usage error for a `text` that matches several records: `why`, and the first ten
/// candidates, one per line.
Error ambiguous(const std::string& text, const std::string& why,
                const std::vector<std::string>& candidates);
/// In `Error::userInfo`, lines to print below the message.
inline constexpr const char* kCandidatesKey = "candidates";

}  // namespace vantrel::cli
