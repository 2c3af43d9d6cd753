#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Date.h"

namespace vantrel {

/// The longest lead time: plans later than this after the present need not be read.
inline constexpr std::chrono::minutes kLongestLeadTime = std::chrono::days(7);

/// Parses a list of lead times such as "1d,30m", each 1 minute to 7 days, or "off".
/// Returns them in ascending order without duplicates; empty for "off"; `nullopt` if invalid.
std::optional<std::vector<std::chrono::minutes>> parseLeadTimes(std::string_view text);

struct PlannedShoot {
  std::string identifier;
  Date date;
};

/// One notification. It contains the date, so that a plan that moves is announced again.
struct Reminder {
  std::string identifier;
  Date date;
  std::chrono::minutes leadTime{};

  friend bool operator==(const Reminder&, const Reminder&) = default;
};

struct ReminderSchedule {
  std::vector<Reminder> due;  ///< In the order of `plans`, at most one for each plan.
  std::optional<Date> next;   ///< When to compute the schedule again; `nullopt` if never.

  /// Returns the schedule at `now`. `leadTimes` are in ascending order. If several reminders of a
  /// plan are due, only the one with the shortest lead time is: a reminder in `shown` also stands
  /// for the longer ones of the same plan and date. Plans that have begun have no reminders.
  /// O(plans × leadTimes × shown). Thread-safe.
  static ReminderSchedule compute(const std::vector<PlannedShoot>& plans,
                                  const std::vector<std::chrono::minutes>& leadTimes,
                                  const std::vector<Reminder>& shown, Date now);
};

}  // namespace vantrel
