#pragma once

#include <optional>

#include "base/Date.h"
#include "platform/text/Locale.h"
#include "platform/text/TimeZone.h"

namespace vantrel {

/// Calendar fields. Without a value, year, month and day count as 1 and the others as 0.
struct DateComponents {
  std::optional<int> year = {};
  std::optional<int> month = {};
  std::optional<int> day = {};
  std::optional<int> hour = {};
  std::optional<int> minute = {};
  std::optional<int> second = {};
};

/// The Gregorian calendar, Julian before 1582-10-15, in a time zone. An immutable value;
/// thread-safe.
class Calendar {
 public:
  Calendar(TimeZone zone, Locale locale) : zone_(std::move(zone)), locale_(std::move(locale)) {}
  /// The calendar of the device's current zone and locale.
  static Calendar currentCalendar();

  const TimeZone& timeZone() const { return zone_; }

  /// Returns all six fields. Fractions of a second are rounded down.
  DateComponents components(Date date) const;
  /// Fields out of range carry over: minute 60 is the next hour. For skipped and repeated times see
  /// `TimeZone::dateForWallSeconds`.
  Date dateFromComponents(const DateComponents& components) const;
  /// The same wall time `days` later, or earlier if negative: 12:00 stays 12:00 when the clocks
  /// change.
  Date dateByAddingDays(Date date, int days) const;
  /// 1 = Sunday … 7 = Saturday.
  int weekday(Date date) const;
  /// 1 to 7, counted from the locale's first day of the week.
  int ordinalityOfDayInWeek(Date date) const;
  int numberOfDaysInMonth(Date date) const;

 private:
  TimeZone zone_;
  Locale locale_;
};

}  // namespace vantrel
