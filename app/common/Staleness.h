#pragma once

#include <chrono>

#include "base/Clock.h"
#include "base/Date.h"
#include "platform/text/Calendar.h"

namespace vantrel {

/// Rules for programs that show plans and keep them up to date.

/// How soon to read a locked store again.
inline constexpr double kBusyStoreSeconds = 5;

/// Returns the present instant of the system's clock, which `Clock::sharedClock` may differ from.
inline Date systemNow() {
  const std::chrono::duration<double> sinceEpoch =
      std::chrono::system_clock::now().time_since_epoch();
  return Date::dateWithTimeIntervalSince1970(sinceEpoch.count());
}

/// Returns when the system's clock will show the time at which `Clock::sharedClock` shows
/// `instant`.
inline Date systemInstant(Date instant) {
  return systemNow().dateByAddingTimeInterval(
      instant.timeIntervalSinceDate(Clock::sharedClock().now()));
}

/// Returns when the day after that of `now` begins, in the device's zone.
inline Date nextMidnight(Date now) {
  const Calendar calendar = Calendar::currentCalendar();
  const DateComponents today = calendar.components(now);
  DateComponents tomorrow;
  tomorrow.year = today.year;
  tomorrow.month = today.month;
  tomorrow.day = *today.day + 1;
  return calendar.dateFromComponents(tomorrow);
}

}  // namespace vantrel
