#pragma once

#include <optional>

#include "base/Date.h"
#include "platform/text/Locale.h"
#include "platform/text/TimeZone.h"

namespace vantrel {

/// Calendar fields; an absent one reads as its lowest value (1 for month and day, 0 for the time).
struct DateComponents {
  std::optional<int> year = {};
  std::optional<int> month = {};
  std::optional<int> day = {};
  std::optional<int> hour = {};
  std::optional<int> minute = {};
  std::optional<int> second = {};
};

/// The Gregorian calendar (Julian before 1582-10-15) in a time zone. Operations are const and keep
/// no state between calls: a shared calendar may be read from several threads.
class Calendar {
 public:
  Calendar(TimeZone zone, Locale locale) : zone_(std::move(zone)), locale_(std::move(locale)) {}
  /// The user's calendar, with the device's zone and the current locale of this moment.
  static Calendar currentCalendar();

  const TimeZone& timeZone() const { return zone_; }

  /// All six fields of the instant; fractions of a second are dropped by floor.
  DateComponents components(Date date) const;
  /// Fields out of range carry over (minute 60 is the next hour). Wall times that are skipped or
  /// repeated: see TimeZone::dateForWallSeconds.
  Date dateFromComponents(const DateComponents& components) const;
  /// The same wall time that many calendar days later (earlier when negative).
  Date dateByAddingDays(Date date, int days) const;
  /// 1 = Sunday … 7 = Saturday.
  int weekday(Date date) const;
  /// The position of the day in its week, 1 = the locale's first weekday.
  int ordinalityOfDayInWeek(Date date) const;
  int numberOfDaysInMonth(Date date) const;

 private:
  TimeZone zone_;
  Locale locale_;
};

}  // namespace vantrel
