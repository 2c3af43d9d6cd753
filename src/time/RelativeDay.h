#pragma once

#include <cstdint>
#include <string>

#include "base/Date.h"
#include "platform/text/TimeZone.h"

namespace vantrel {

/// The number of midnights in `zone` from `now` to `date`: 0 for today, 1 for tomorrow, negative
/// for past days.
std::int64_t daysUntil(Date date, const TimeZone& zone, Date now);

/// The word that a person would use for the day of `date` in `zone`, in the current locale:
/// "today", "tomorrow", "yesterday", a weekday within the next week, otherwise "3 days ago",
/// "in 3 weeks", "in 4 months", "2 years ago". Without `weekdays`, "in 4 days" instead of a
/// weekday. Main thread only.
std::string relativeDayText(Date date, const TimeZone& zone, Date now, bool weekdays = true);

}  // namespace vantrel
