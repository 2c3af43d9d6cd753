#include "time/Calendar+CachedCalendar.h"

namespace vantrel {

const Calendar& cachedCalendar() {
  static const Calendar calendar = Calendar::currentCalendar();
  return calendar;
}

const Calendar& gmtCachedCalendar() {
  static const Calendar calendar(TimeZone::timeZoneForSecondsFromGMT(0), Locale::currentLocale());
  return calendar;
}

}  // namespace vantrel
