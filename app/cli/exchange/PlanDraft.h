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

/// Limits of the input, which is read into memory.
inline constexpr std::size_t kMostBytesRead = std::size_t{64} << 20;
inline constexpr std::size_t kMostPlansRead = 100000;
inline constexpr std::size_t kLongestIdentifier = 1024;
/// In degrees: half of the sixth decimal of calendars, and the rounding error.
inline constexpr double kPlacePrecision = 0.51e-6;

/// A plan as described by a file.
struct PlanDraft {
  std::string where;  ///< Its position for messages: "event 3", "plans[2]".
  std::optional<std::string> identifier;
  /// By attribute. An absent value clears the attribute; missing attributes are left unchanged.
  std::map<std::string, Value> values;
  /// The date if it is a wall time of the plan's zone, in seconds since 2001-01-01 00:00.
  std::optional<double> wallSeconds;
  /// From a calendar: without fractions of seconds and control characters, places to six decimals.
  bool isRounded = false;
};

struct PlanDrafts {
  std::vector<PlanDraft> plans;
  /// One line for each kind of entry that was read incompletely or left out.
  std::vector<std::string> notes;
};

/// Called repeatedly during long work.
using ProgressReport = std::function<void(std::size_t done, std::size_t total)>;

/// Returns the error `where: why` with kExitBadData.
tl::unexpected<Error> invalidData(const std::string& where, const std::string& why);

/// Checks of values in files. Errors: kExitBadData, from `invalidData`.
Expected<void> checkIdentifier(const std::string& where, const std::string& identifier);
Expected<double> checkedDegrees(const std::string& where, double degrees, int limit);
Expected<void> checkCount(std::size_t count);
/// Fails if two drafts of a calendar have one identifier and different values.
Expected<void> checkIdentifiers(const std::vector<PlanDraft>& drafts);

/// Appends a note unless `count` is 0: `one`, or the count followed by `many`.
void addNote(std::vector<std::string>& notes, std::size_t count, const char* one, const char* many);

}  // namespace vantrel::cli
