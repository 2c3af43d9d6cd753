#include "common/DayWords.h"

#include "base/Clock.h"
#include "base/StringFormat.h"
#include "platform/system/Bundle.h"
#include "platform/text/TimeZone.h"
#include "time/RelativeDay.h"

namespace vantrel {

std::optional<std::string> dayWords(const Planning& plan, bool weekdays) {
  const auto date = plan.date();
  if (!date) return std::nullopt;
  const Date now = Clock::sharedClock().now();
  const TimeZone here = TimeZone::defaultTimeZone();
  const TimeZone zone = TimeZone::timeZoneOrDefault(plan.timezone());
  std::string words = relativeDayText(*date, zone, now, weekdays);
  if (daysUntil(*date, zone, now) == daysUntil(*date, here, now)) return words;
  return stringWithFormat(Bundle::mainBundle().localizedString("today_local_time", "", "Today"),
                          {words, relativeDayText(*date, here, now, weekdays)});
}

}  // namespace vantrel
