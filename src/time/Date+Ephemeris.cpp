#include "time/Date+Ephemeris.h"

#include <array>
#include <cmath>
#include <limits>

#include "platform/system/Bundle.h"
#include "time/Calendar+CachedCalendar.h"

namespace vantrel::ephemeris {

namespace {

/// Truncates toward zero; 0 if out of range or NaN.
int truncated(double value) {
  constexpr double kLimit = std::numeric_limits<int>::max();
  return std::fabs(value) < kLimit ? static_cast<int>(value) : 0;
}

Date dayAtTime(Date date, int hour, int minute, int second) {
  auto components = cachedCalendar().components(date);
  components.hour = hour;
  components.minute = minute;
  components.second = second;
  return cachedCalendar().dateFromComponents(components);
}

}  // namespace

Date dateWithPtDateTime(const PtDateTime& dateTime, bool withSeconds) {
  DateComponents components{
      .year = dateTime.year, .month = dateTime.month, .day = dateTime.day, .hour = dateTime.hour};
  if (withSeconds) {
    const int minute = truncated(dateTime.minutes);
    components.minute = minute;
    components.second = truncated((dateTime.minutes - minute) * 60.0);
  } else {
    components.minute = truncated(dateTime.minutes + 0.5);
  }
  return gmtCachedCalendar().dateFromComponents(components);
}

void ptDateTimeForDate(Date date, PtDateTime& dateTime) {
  const auto components = gmtCachedCalendar().components(date);
  dateTime.year = *components.year;
  dateTime.month = *components.month;
  dateTime.day = *components.day;
  dateTime.hour = *components.hour;
  dateTime.minutes = *components.second / 60.0 + *components.minute;
}

Date dateFromModifiedJulianDay(double modifiedJulianDay, bool withSeconds) {
  PtDateTime dateTime;
  dateTime.FromModifiedJulianDay(modifiedJulianDay);
  return dateWithPtDateTime(dateTime, withSeconds);
}

double modifiedJulianDay(Date date) {
  PtDateTime dateTime;
  ptDateTimeForDate(date, dateTime);
  return dateTime.ModifiedJulianDay();
}

Date dateWithStartDateTime(Date date) {
  return dayAtTime(date, 0, 0, 0);
}

Date dateWithNoonDateTime(Date date) {
  return dayAtTime(date, 12, 0, 0);
}

Date dateWithEndDateTime(Date date) {
  return dayAtTime(date, 23, 59, 59);
}

Date firstDayOfYear(int year) {
  const DateComponents components{.year = year, .month = 1, .day = 1};
  return dateWithStartDateTime(Calendar::currentCalendar().dateFromComponents(components));
}

Date dateByAddingNumberOfDays(Date date, int numberOfDays) {
  return cachedCalendar().dateByAddingDays(date, numberOfDays);
}

Date nextMainHour(Date date) {
  auto components = cachedCalendar().components(date);
  components.hour = *components.hour + 1;
  components.minute = 0;
  components.second = 0;
  return cachedCalendar().dateFromComponents(components);
}

Date previousMainHour(Date date) {
  auto components = cachedCalendar().components(date);
  components.minute = 0;
  return cachedCalendar().dateFromComponents(components);
}

bool date(Date date, Date isBetweenDate, Date andDate) {
  return date > isBetweenDate && date < andDate;
}

Date closestDateFromDate(Date fromDate, Date toDate, Date ofDate) {
  if (date(ofDate, fromDate, toDate)) return ofDate;
  const double toStart = std::fabs(ofDate.timeIntervalSinceDate(fromDate));
  const double toEnd = std::fabs(ofDate.timeIntervalSinceDate(toDate));
  return toStart < toEnd ? fromDate : toDate;
}

bool isDate(Date date, Date sameDayAsDate) {
  const auto a = cachedCalendar().components(date);
  const auto b = cachedCalendar().components(sameDayAsDate);
  return a.day == b.day && a.month == b.month && a.year == b.year;
}

int yearValue(Date date) {
  return *cachedCalendar().components(date).year;
}

int monthValue(Date date) {
  return *cachedCalendar().components(date).month;
}

int dayValue(Date date) {
  return *cachedCalendar().components(date).day;
}

int hourValue(Date date) {
  return *cachedCalendar().components(date).hour;
}

int minuteValue(Date date) {
  return *cachedCalendar().components(date).minute;
}

float floatHour(Date date) {
  const auto components = cachedCalendar().components(date);
  return static_cast<float>(*components.hour + *components.minute / 24.0);
}

double timeAsFractionOfDay(Date date) {
  const auto components = cachedCalendar().components(date);
  return (*components.minute / 60.0 + *components.hour + *components.second / 3600.0) / 24.0;
}

int weekday(Date date) {
  return Calendar::currentCalendar().ordinalityOfDayInWeek(date);
}

std::string weekdayAbbreviation(Date date) {
  static constexpr std::array<const char*, 7> kKeys = {
      "week_day_abbr_su", "week_day_abbr_mo", "week_day_abbr_tu", "week_day_abbr_we",
      "week_day_abbr_th", "week_day_abbr_fr", "week_day_abbr_sa"};
  const auto index = static_cast<std::size_t>(Calendar::currentCalendar().weekday(date) - 1);
  return Bundle::mainBundle().localizedString(kKeys[index], "", "Common");
}

int numberOfDaysInMonth(Date date) {
  return Calendar::currentCalendar().numberOfDaysInMonth(date);
}

}  // namespace vantrel::ephemeris
