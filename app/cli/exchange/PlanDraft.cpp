#include "cli/exchange/PlanDraft.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "common/ExitCode.h"

namespace vantrel::cli {

tl::unexpected<Error> invalidData(const std::string& where, const std::string& why) {
  return tl::unexpected(failure(kExitBadData, where, why));
}

Expected<void> checkIdentifier(const std::string& where, const std::string& identifier) {
  if (identifier.empty()) return invalidData(where, "must not be empty");
  if (identifier.size() > kLongestIdentifier) {
    return invalidData(where, "longer than " + std::to_string(kLongestIdentifier) + " bytes");
  }
  const bool isPlain = std::none_of(identifier.begin(), identifier.end(), [](char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
  });
  if (!isPlain) return invalidData(where, "expected text without control characters");
  return {};
}

Expected<double> checkedDegrees(const std::string& where, double degrees, int limit) {
  if (std::fabs(degrees) <= limit) return degrees;
  const std::string bound = std::to_string(limit);
  return invalidData(where, "expected degrees from -" + bound + " to " + bound);
}

Expected<void> checkCount(std::size_t count) {
  if (count <= kMostPlansRead) return {};
  return invalidData("plans", "more than " + std::to_string(kMostPlansRead));
}

Expected<void> checkIdentifiers(const std::vector<PlanDraft>& drafts) {
  std::unordered_map<std::string_view, const PlanDraft*> known;
  for (const auto& draft : drafts) {
    if (!draft.identifier || !draft.isRounded) continue;
    const PlanDraft& first = *known.emplace(*draft.identifier, &draft).first->second;
    if (first.values != draft.values || first.wallSeconds != draft.wallSeconds) {
      return invalidData(draft.where,
                         "has the identifier of " + first.where + " but different values");
    }
  }
  return {};
}

void addNote(std::vector<std::string>& notes, std::size_t count, const char* one,
             const char* many) {
  if (count > 0) notes.push_back(count == 1 ? one : std::to_string(count) + many);
}

}  // namespace vantrel::cli
