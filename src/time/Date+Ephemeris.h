#pragma once

#include <string>

#include "base/Date.h"
#include "time/PtDateTime.h"

/// Calendar arithmetic on dates. Days, hours and minutes are those of `cachedCalendar` unless a
/// comment says otherwise. Any thread.
namespace vantrel::ephemeris {

/// The instant of a record in GMT; minutes are rounded to whole ones, or with seconds truncated to
/// whole seconds. Fields out of range carry over (minute 60 is the next hour).
Date dateWithPtDateTime(const PtDateTime& dateTime, bool withSeconds = false);
/// Fills the record from the instant in GMT, to whole seconds.
void ptDateTimeForDate(Date date, PtDateTime& dateTime);
Date dateFromModifiedJulianDay(double modifiedJulianDay, bool withSeconds = false);
/// Days since 1858-11-17 00:00 UT; the fraction of a second is lost.
double modifiedJulianDay(Date date);

/// That day at 00:00:00, or where the day begins when midnight is skipped.
Date dateWithStartDateTime(Date date);
/// That day at 12:00:00.
Date dateWithNoonDateTime(Date date);
/// That day at 23:59:59.
Date dateWithEndDateTime(Date date);
/// 1 January of that year, read in the user's calendar of this moment, at 00:00:00.
Date firstDayOfYear(int year);
/// The same wall time that many calendar days later; a negative number goes back.
Date dateByAddingNumberOfDays(Date date, int numberOfDays);
/// The next whole hour, also for a time on the hour.
Date nextMainHour(Date date);
/// The hour's beginning but with the seconds kept: 10:25:40 gives 10:00:40.
Date previousMainHour(Date date);

/// Whether the date lies between the two, both excluded; never when the second is earlier.
bool date(Date date, Date isBetweenDate, Date andDate);
/// `ofDate` itself when it lies between the two, else the nearer end; `toDate` on a tie.
Date closestDateFromDate(Date fromDate, Date toDate, Date ofDate);
bool isDate(Date date, Date sameDayAsDate);

int yearValue(Date date);
int monthValue(Date date);
int dayValue(Date date);
int hourValue(Date date);
int minuteValue(Date date);
/// Hour plus minute / 24 (not 60; that is what its callers expect): 10:30 gives 11.25.
float floatHour(Date date);
/// In [0, 1).
double timeAsFractionOfDay(Date date);

/// The day's position in its week, 1 being the first weekday of the user's locale of this moment.
int weekday(Date date);
/// "Mo", in the language of the texts, by the user's calendar of this moment.
std::string weekdayAbbreviation(Date date);
/// By the user's calendar of this moment.
int numberOfDaysInMonth(Date date);

}  // namespace vantrel::ephemeris
