#include "time/Date+Ephemeris.h"

#include <gtest/gtest.h>

#include "base/Iso8601.h"
#include "support/Guards.h"
#include "time/Calendar+CachedCalendar.h"

namespace vantrel::ephemeris {
namespace {

using test::at;
using test::EnvironmentGuard;

/// The calendar is first used in a time zone whose clocks change at midnight.
class DateInHavana : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(cachedCalendar().timeZone().name(), "America/Havana")
        << "another test of this process has set the calendar's zone: use ctest";
  }

 private:
  EnvironmentGuard zone_{"TZ", "America/Havana"};
};

TEST_F(DateInHavana, HasAStartANoonAndAnEnd) {
  struct Case {
    const char *instant, *start, *noon, *end;
  };
  // By Python's zoneinfo, fold 0.
  const Case cases[] = {
      // plain
      {"2024-06-21T23:45:10.5Z", "2024-06-21T04:00:00Z", "2024-06-21T16:00:00Z",
       "2024-06-22T03:59:59Z"},
      // evening before in UTC
      {"2024-06-21T03:59:59Z", "2024-06-20T04:00:00Z", "2024-06-20T16:00:00Z",
       "2024-06-21T03:59:59Z"},
      // no midnight: begins at one
      {"2024-03-10T20:00:00Z", "2024-03-10T05:00:00Z", "2024-03-10T16:00:00Z",
       "2024-03-11T03:59:59Z"},
      // two midnights: the first
      {"2024-11-03T20:00:00Z", "2024-11-03T04:00:00Z", "2024-11-03T17:00:00Z",
       "2024-11-04T04:59:59Z"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.instant);
    EXPECT_EQ(iso8601String(dateWithStartDateTime(at(c.instant))), c.start);
    EXPECT_EQ(iso8601String(dateWithNoonDateTime(at(c.instant))), c.noon);
    EXPECT_EQ(iso8601String(dateWithEndDateTime(at(c.instant))), c.end);
  }
}

TEST_F(DateInHavana, MovesToWholeHoursAndOtherDays) {
  struct Case {
    const char *instant, *next, *previous;
  };
  const Case cases[] = {
      // seconds stay behind
      {"2024-06-21T14:25:40Z", "2024-06-21T15:00:00Z", "2024-06-21T14:00:40Z"},
      // on the hour
      {"2024-06-21T14:00:00Z", "2024-06-21T15:00:00Z", "2024-06-21T14:00:00Z"},
      // last hour
      {"2024-06-22T03:10:00Z", "2024-06-22T04:00:00Z", "2024-06-22T03:00:00Z"},
      // before a skipped hour
      {"2024-03-10T04:30:00Z", "2024-03-10T05:00:00Z", "2024-03-10T04:00:00Z"},
      // first pass of a repeated hour
      {"2024-11-03T04:30:00Z", "2024-11-03T06:00:00Z", "2024-11-03T04:00:00Z"},
      // second pass
      {"2024-11-03T05:30:00Z", "2024-11-03T06:00:00Z", "2024-11-03T04:00:00Z"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.instant);
    EXPECT_EQ(iso8601String(nextMainHour(at(c.instant))), c.next);
    EXPECT_EQ(iso8601String(previousMainHour(at(c.instant))), c.previous);
  }
  const Date evening = at("2024-03-10T02:15:00.5Z");
  EXPECT_EQ(iso8601String(dateByAddingNumberOfDays(evening, 1)), "2024-03-11T01:15:00.5Z");
  EXPECT_EQ(iso8601String(dateByAddingNumberOfDays(evening, -30)), "2024-02-09T02:15:00.5Z");
}

TEST_F(DateInHavana, HasComponents) {
  const Date date = at("2024-01-01T02:48:36Z");  // 2023-12-31 21:48:36
  EXPECT_EQ(yearValue(date), 2023);
  EXPECT_EQ(monthValue(date), 12);
  EXPECT_EQ(dayValue(date), 31);
  EXPECT_EQ(hourValue(date), 21);
  EXPECT_EQ(minuteValue(date), 48);
  EXPECT_EQ(floatHour(date), 23.0F);
  EXPECT_EQ(floatHour(at("2024-06-21T14:30:00Z")), 11.25F);
  EXPECT_EQ(floatHour(at("2024-06-21T14:01:00Z")), static_cast<float>(10 + 1 / 24.0));
  EXPECT_DOUBLE_EQ(timeAsFractionOfDay(date), 78516.0 / 86400);
  EXPECT_TRUE(isDate(date, at("2023-12-31T05:00:00Z")));
  EXPECT_FALSE(isDate(date, at("2023-12-31T04:59:59Z")));
  EXPECT_FALSE(isDate(date, at("2022-12-31T12:00:00Z")));
  EXPECT_FALSE(isDate(date, at("2023-10-31T12:00:00Z")));
}

TEST_F(DateInHavana, KeepsItsCalendarWhenTheDeviceMoves) {
  const EnvironmentGuard moved("TZ", "Asia/Tokyo");
  const EnvironmentGuard locale("LC_ALL", "de_DE.UTF-8");
  const Date date = at("2024-02-29T16:00:00Z");  // Thursday in Havana, Friday in Tokyo.
  EXPECT_EQ(dayValue(date), 29);
  EXPECT_EQ(weekday(date), 5);
  EXPECT_EQ(weekdayAbbreviation(date), "Fr");
  EXPECT_EQ(numberOfDaysInMonth(date), 31);
  // The year's first instant in Tokyo still belongs to the old year in Havana.
  EXPECT_EQ(iso8601String(firstDayOfYear(2024)), "2023-12-31T05:00:00Z");
  const EnvironmentGuard us("LC_ALL", "en_US.UTF-8");
  EXPECT_EQ(weekday(date), 6);
}

TEST(DateEphemeris, TurnsRecordsIntoDatesAndBack) {
  struct Case {
    PtDateTime record;
    const char *rounded, *withSeconds;
  };
  const Case cases[] = {
      {{2024, 6, 21, 3, 30}, "2024-06-21T03:30:00Z", "2024-06-21T03:30:00Z"},
      {{2024, 6, 21, 3, 59.6}, "2024-06-21T04:00:00Z", "2024-06-21T03:59:36Z"},
      {{2024, 6, 21, 3, 12.999}, "2024-06-21T03:13:00Z", "2024-06-21T03:12:59Z"},
      {{2024, 6, 21, 3, 12.5}, "2024-06-21T03:13:00Z", "2024-06-21T03:12:30Z"},
      {{2024, 12, 31, 23, 60}, "2025-01-01T00:00:00Z", "2025-01-01T00:00:00Z"},
      {{2024, 6, 21, 3, __builtin_nan("")}, "2024-06-21T03:00:00Z", "2024-06-21T03:00:00Z"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(iso8601String(dateWithPtDateTime(c.record)), c.rounded);
    EXPECT_EQ(iso8601String(dateWithPtDateTime(c.record, true)), c.withSeconds);
  }
  PtDateTime record;
  ptDateTimeForDate(at("2024-10-17T23:37:30.9Z"), record);
  EXPECT_EQ(record.minutes, 37.5);
  EXPECT_EQ(record.hour, 23);
  // ERFA's eraCal2jd and eraTf2d.
  EXPECT_EQ(modifiedJulianDay(at("2024-10-17T23:37:30.9Z")), 60600.984375);
  EXPECT_EQ(iso8601String(dateFromModifiedJulianDay(60600.984375, true)), "2024-10-17T23:37:30Z");
  EXPECT_EQ(iso8601String(dateFromModifiedJulianDay(60600.984375)), "2024-10-17T23:38:00Z");
  // Whole minutes survive.
  const Date start = at("2024-02-28T00:00:00Z");
  for (int minute = 0; minute < 3 * 1440; ++minute) {
    const Date date = start.dateByAddingTimeInterval(minute * 60);
    ASSERT_EQ(dateFromModifiedJulianDay(modifiedJulianDay(date)), date) << minute;
  }
}

TEST(DateEphemeris, ComparesWithOtherDates) {
  const Date start(100);
  const Date end(200);
  EXPECT_TRUE(date(Date(150), start, end));
  EXPECT_FALSE(date(start, start, end));
  EXPECT_FALSE(date(end, start, end));
  EXPECT_FALSE(date(Date(150), end, start));
  const std::pair<double, double> closest[] = {
      {150, 150}, {100, 100}, {200, 200}, {50, 100}, {1000, 200}};
  for (const auto& [of, date] : closest) {
    EXPECT_EQ(closestDateFromDate(start, end, Date(of)), Date(date));
  }
  // Ends the wrong way round: nothing lies between, and a tie goes to the second.
  EXPECT_EQ(closestDateFromDate(end, start, Date(150)), start);
}

}  // namespace
}  // namespace vantrel::ephemeris
