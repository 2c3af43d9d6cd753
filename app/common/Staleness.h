#pragma once

#include <chrono>

#include "base/Date.h"
#include "platform/text/Calendar.h"

namespace vantrel {

/// When a program that shows plans has to look again.

/// How long a change of the store settles: a burst of commits causes one look, which follows at
/// once for the eye.
inline constexpr std::chrono::milliseconds kStoreSettles{150};
/// The same for a new file in the store's place: opening half a copy could spoil it.
inline constexpr std::chrono::milliseconds kNewStoreSettles{500};
/// How soon to look again at a store that is locked.
inline constexpr double kBusyStoreSeconds = 5;

/// The system's present instant, which the program's clock may differ from.
inline Date systemNow() {
  const std::chrono::duration<double> sinceEpoch =
      std::chrono::system_clock::now().time_since_epoch();
  return Date::dateWithTimeIntervalSince1970(sinceEpoch.count());
}

/// When the day after that of `now` begins, in the device's zone.
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
