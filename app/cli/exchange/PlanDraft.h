#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Error.h"
#include "objectstore/model/Value.h"

namespace vantrel::cli {

/// More than any photographer's, and little enough to be held in memory.
inline constexpr std::size_t kMostBytesRead = std::size_t{64} << 20;
inline constexpr std::size_t kMostPlansRead = 100000;
inline constexpr std::size_t kLongestIdentifier = 1024;
/// Half of the last decimal that calendars have for places, and what rounding itself costs.
inline constexpr double kPlacePrecision = 0.51e-6;

/// What a file says of one plan.
struct PlanDraft {
  std::string where;  ///< "event 3", "plans[2]": for messages.
  std::optional<std::string> identifier;
  /// By attribute. An absent value clears; what is not here stays as it is.
  std::map<std::string, Value> values;
  /// A date given as wall time, in seconds since 2001-01-01 00:00, of the plan's zone.
  std::optional<double> wallSeconds;
  /// From a calendar, which knows no fractions of seconds, no control characters, and places to six
  /// decimals.
  bool isRounded = false;
};

/// What a whole file says.
struct PlanDrafts {
  std::vector<PlanDraft> plans;
  /// What was understood only in part, or left out; one line each.
  std::vector<std::string> notes;
};

/// Told now and then how much of all is done.
using ProgressReport = std::function<void(std::size_t done, std::size_t all)>;

/// An error that names the place in the file, and ends with kExitBadData.
tl::unexpected<Error> refused(const std::string& where, const std::string& why);

/// The same checks as for what is typed; they fail as `refused` does.
Expected<void> checkIdentifier(const std::string& where, const std::string& identifier);
Expected<double> checkedDegrees(const std::string& where, double degrees, int limit);
Expected<void> checkCount(std::size_t count);
/// Under one identifier a calendar may say the same again, but nothing else.
Expected<void> checkIdentifiers(const std::vector<PlanDraft>& drafts);

}  // namespace vantrel::cli
