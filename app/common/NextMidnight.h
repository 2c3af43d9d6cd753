#pragma once

#include "base/Date.h"
#include "platform/text/Calendar.h"

namespace vantrel {

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
