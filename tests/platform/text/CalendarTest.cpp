#include "platform/text/Calendar.h"

#include <gtest/gtest.h>

#include <cmath>

#include "base/Iso8601.h"
#include "support/Guards.h"

namespace vantrel {
namespace {

using test::at;

Calendar calendarIn(const char* zone, const char* locale = "en_US") {
  return {*TimeZone::timeZoneWithName(zone), Locale(locale)};
}

std::string text(const DateComponents& c) {
  std::string result;
  for (const auto& field : {c.year, c.month, c.day, c.hour, c.minute, c.second}) {
    result += (result.empty() ? "" : " ") + std::to_string(*field);
  }
  return result;
}

TEST(Calendar, CountsJulianBefore1582AndGregorianAfter) {
  struct Case {
    const char* name;
    int year, month, day;
    std::int64_t julianDay;  // modified
    int daysInMonth;
  };
  // Gregorian dates by ERFA's eraCal2jd, Julian ones by ICU's GregorianCalendar.
  const Case cases[] = {
      {"epoch", 1858, 11, 17, 0, 30},
      {"last Julian day", 1582, 10, 4, -100841, 31},
      {"first Gregorian day", 1582, 10, 15, -100840, 31},
      {"in the year of the change", 1582, 1, 15, -101103, 31},
      {"Julian century has a leap day", 1500, 2, 29, -131009, 29},
      {"Gregorian century has none", 1900, 2, 28, 15078, 28},
      {"but each fourth has", 1600, 2, 29, -94494, 29},
      {"year 1", 1, 1, 1, -678577, 31},
      {"last plain day", 9999, 12, 31, 2973483, 31},
      {"the day after", 10000, 1, 1, 2973484, 31},
  };
  const auto calendar = calendarIn("GMT");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const Date date(static_cast<double>((c.julianDay - 51910) * 86400) + 3723);
    const DateComponents components{c.year, c.month, c.day, 1, 2, 3};
    EXPECT_EQ(calendar.dateFromComponents(components), date);
    EXPECT_EQ(text(calendar.components(date)), text(components));
    EXPECT_EQ(calendar.numberOfDaysInMonth(date), c.daysInMonth);
  }
  // A day that never was counts on from the Julian ones.
  const Date skipped = calendar.dateFromComponents({.year = 1582, .month = 10, .day = 10});
  EXPECT_EQ(text(calendar.components(skipped)), "1582 10 20 0 0 0");
}

TEST(Calendar, CarriesFieldsOutOfRangeAndDropsFractions) {
  const std::pair<DateComponents, const char*> cases[] = {
      {{2024, 6, 21, 12, 60, 0}, "2024-06-21T13:00:00Z"},
      {{2024, 12, 31, 24, 0, 0}, "2025-01-01T00:00:00Z"},
      {{2023, 14, 29, 0, 0, 0}, "2024-02-29T00:00:00Z"},
      {{2024, 0, 1, 0, 0, 0}, "2023-12-01T00:00:00Z"},
      {{2024, 3, 0, 0, 0, 0}, "2024-02-29T00:00:00Z"},
      {{2024, 1, 1, 0, 0, -1}, "2023-12-31T23:59:59Z"},
      {{.year = 2024}, "2024-01-01T00:00:00Z"},
  };
  for (const auto& [components, instant] : cases) {
    EXPECT_EQ(iso8601String(calendarIn("GMT").dateFromComponents(components)), instant);
  }
  // Fractions are dropped by floor.
  EXPECT_EQ(text(calendarIn("GMT").components(Date(-0.25))), "2000 12 31 23 59 59");
  EXPECT_EQ(text(calendarIn("Asia/Kathmandu").components(Date(0.75))), "2001 1 1 5 45 0");
}

TEST(Calendar, KeepsTheWallTimeWhenAddingDays) {
  struct Case {
    const char* name;
    const char* zone;
    const char* from;
    int days;
    const char* to;
  };
  // By Python's zoneinfo, fold 0.
  const Case cases[] = {
      {"short day", "Europe/Madrid", "2024-03-30T11:00:00Z", 1, "2024-03-31T10:00:00Z"},
      {"long day", "Europe/Madrid", "2024-10-26T10:00:00.5Z", 1, "2024-10-27T11:00:00.5Z"},
      {"onto a skipped time", "America/Havana", "2024-03-09T05:30:00Z", 1, "2024-03-10T05:30:00Z"},
      {"onto a repeated time", "Europe/Madrid", "2024-10-28T01:30:00Z", -1, "2024-10-27T00:30:00Z"},
      {"nothing", "Europe/Madrid", "2024-10-27T01:30:00Z", 0, "2024-10-27T01:30:00Z"},
      {"onto a skipped day", "Pacific/Apia", "2011-12-29T20:00:00Z", 1, "2011-12-30T20:00:00Z"},
      {"over the year 1582", "GMT", "1582-10-14T06:00:00Z", 1, "1582-10-15T06:00:00Z"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(iso8601String(calendarIn(c.zone).dateByAddingDays(at(c.from), c.days)), c.to);
  }
}

TEST(Calendar, CountsWeekdaysFromTheLocalesFirst) {
  // First weekdays by the supplemental data of CLDR 42.
  const std::pair<const char*, int> cases[] = {{"de_DE", 5}, {"en_US", 6}, {"ar_EG", 7},
                                               {"zh_CN", 5}, {"pt_BR", 6}, {"en_US_POSIX", 6}};
  const Date friday = at("2024-03-01T12:00:00Z");
  for (const auto& [locale, position] : cases) {
    SCOPED_TRACE(locale);
    EXPECT_EQ(calendarIn("GMT", locale).ordinalityOfDayInWeek(friday), position);
    EXPECT_EQ(calendarIn("GMT", locale).weekday(friday), 6);
  }
  EXPECT_EQ(calendarIn("Pacific/Auckland").weekday(friday), 7);
  EXPECT_EQ(calendarIn("GMT").weekday(at("1969-07-20T20:17:40Z")), 1);
}

TEST(Calendar, SupportsAnyDate) {
  const auto calendar = calendarIn("America/New_York");
  for (const double seconds : {1e300, -1e300, 1e18, -1e15, double{INFINITY}, double{NAN}}) {
    SCOPED_TRACE(seconds);
    const auto components = calendar.components(Date(seconds));
    EXPECT_TRUE(*components.month >= 1 && *components.month <= 12);
    EXPECT_GE(calendar.numberOfDaysInMonth(Date(seconds)), 28);
    calendar.dateByAddingDays(Date(seconds), 1);
  }
  for (const int extreme : {INT32_MAX, INT32_MIN}) {
    calendar.dateFromComponents({extreme, extreme, extreme, extreme, extreme, extreme});
  }
}

}  // namespace
}  // namespace vantrel
