#include "cli/exchange/PlanDraft.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "common/ExitCode.h"

namespace vantrel::cli {

tl::unexpected<Error> refused(const std::string& where, const std::string& why) {
  return tl::unexpected(failure(kExitBadData, where, why));
}

Expected<void> checkIdentifier(const std::string& where, const std::string& identifier) {
  if (identifier.empty()) return refused(where, "must not be empty");
  if (identifier.size() > kLongestIdentifier) {
    return refused(where, "longer than " + std::to_string(kLongestIdentifier) + " bytes");
  }
  const bool isPlain = std::none_of(identifier.begin(), identifier.end(), [](char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
  });
  if (!isPlain) return refused(where, "holds control characters");
  return {};
}

Expected<double> checkedDegrees(const std::string& where, double degrees, int limit) {
  if (std::fabs(degrees) <= limit) return degrees;
  const std::string bound = std::to_string(limit);
  return refused(where, "allowed are degrees from -" + bound + " to " + bound);
}

Expected<void> checkCount(std::size_t count) {
  if (count <= kMostPlansRead) return {};
  return refused("too many plans", "allowed are " + std::to_string(kMostPlansRead) + " at once");
}

Expected<void> checkIdentifiers(const std::vector<PlanDraft>& drafts) {
  std::unordered_map<std::string_view, const PlanDraft*> known;
  for (const auto& draft : drafts) {
    if (!draft.identifier || !draft.isRounded) continue;
    const PlanDraft& first = *known.emplace(*draft.identifier, &draft).first->second;
    if (first.values != draft.values || first.wallSeconds != draft.wallSeconds) {
      return refused(draft.where,
                     "has the identifier of " + first.where + ", but says other things");
    }
  }
  return {};
}

}  // namespace vantrel::cli
