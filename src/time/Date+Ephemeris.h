#pragma once

#include <string>

#include "base/Date.h"
#include "time/PtDateTime.h"

/// Calendar arithmetic on dates, in `cachedCalendar` unless noted. Thread-safe.
///
/// A skipped wall time is moved forward by the gap, of a repeated one the first is used. In Havana
/// clocks jumped on 2024-03-10 from 00:00 to 01:00: that day starts at 01:00. On 2024-11-03 they
/// went back from 01:00 to 00:00: that day starts at the first 00:00.
namespace vantrel::ephemeris {

/// Converts a record in GMT, rounded to minutes or, `withSeconds`, truncated to seconds. Fields out
/// of range carry over: minute 60 is the next hour.
Date dateWithPtDateTime(const PtDateTime& dateTime, bool withSeconds = false);
/// Sets all fields from `date` in GMT, truncated to seconds.
void ptDateTimeForDate(Date date, PtDateTime& dateTime);
Date dateFromModifiedJulianDay(double modifiedJulianDay, bool withSeconds = false);
/// Days since 1858-11-17 00:00 UT, truncated to seconds.
double modifiedJulianDay(Date date);

/// That day at 00:00:00.
Date dateWithStartDateTime(Date date);
/// That day at 12:00:00.
Date dateWithNoonDateTime(Date date);
/// That day at 23:59:59.
Date dateWithEndDateTime(Date date);
/// 1 January of `year` at 00:00:00, in the user's current calendar.
Date firstDayOfYear(int year);
/// The same wall time `numberOfDays` calendar days later, or earlier if negative.
Date dateByAddingNumberOfDays(Date date, int numberOfDays);
/// The next whole hour; a time on the hour moves on too.
Date nextMainHour(Date date);
/// Sets the minutes to 0 and keeps the seconds: 10:25:40 gives 10:00:40.
Date previousMainHour(Date date);

/// Whether `isBetweenDate` < `date` < `andDate`.
bool date(Date date, Date isBetweenDate, Date andDate);
/// Returns `ofDate` if it is between the two, otherwise the nearer end; `toDate` on a tie.
Date closestDateFromDate(Date fromDate, Date toDate, Date ofDate);
/// Whether both are on the same day.
bool isDate(Date date, Date sameDayAsDate);

int yearValue(Date date);
int monthValue(Date date);
int dayValue(Date date);
int hourValue(Date date);
int minuteValue(Date date);
/// Hour + minute / 24 (not 60, which callers rely on): 10:30 gives 11.25.
float floatHour(Date date);
/// In [0, 1).
double timeAsFractionOfDay(Date date);

/// Position of the day in its week in the user's current locale: 1 for its first weekday.
int weekday(Date date);
/// "Mo", localised, in the user's current calendar.
std::string weekdayAbbreviation(Date date);
/// In the user's current calendar.
int numberOfDaysInMonth(Date date);

}  // namespace vantrel::ephemeris
