#include "cli/Suggestion.h"

#include "base/Ascii.h"
#include "common/ExitCode.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <utility>

namespace vantrel::cli {

namespace {

/// The number of characters to insert, delete, replace or swap with their neighbour.
std::size_t editDistance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> before;
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::vector<std::size_t> next(b.size() + 1);
    next[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      next[j] = std::min({row[j] + 1, next[j - 1] + 1, row[j - 1] + (a[i - 1] != b[j - 1])});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        next[j] = std::min(next[j], before[j - 2] + 1);
      }
    }
    before = std::exchange(row, std::move(next));
  }
  return row.back();
}

}  // namespace

std::optional<std::string> nearestWord(const std::string& word,
                                       const std::vector<std::string>& known) {
  const auto nearest = std::min_element(
      known.begin(), known.end(),
      [&](const auto& a, const auto& b) { return editDistance(word, a) < editDistance(word, b); });
  // A guess with more than a third of its characters wrong would only confuse.
  if (nearest == known.end() || editDistance(word, *nearest) * 3 > nearest->size() + 1) {
    return std::nullopt;
  }
  return *nearest;
}

std::string folded(const std::string& name) {
  constexpr std::string_view kTimes = "\xc3\x97";
  std::string result;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const char c = name[i];
    if (name.compare(i, kTimes.size(), kTimes) == 0) {
      result += 'x';
      i += kTimes.size() - 1;
    } else if (c != ' ' && c != '-' && c != '_') {
      result += asciiLower(c);
    }
  }
  return result;
}

Error ambiguous(const std::string& text, const std::string& why,
                const std::vector<std::string>& candidates) {
  constexpr std::size_t kMostCandidates = 10;
  std::string lines;
  for (std::size_t i = 0; i < candidates.size() && i < kMostCandidates; ++i) {
    lines += "\n" + candidates[i];
  }
  if (candidates.size() > kMostCandidates) lines += "\n...";
  Error error = failure(kExitUsage, text, why);
  error.userInfo[kCandidatesKey] = lines;
  return error;
}

}  // namespace vantrel::cli
