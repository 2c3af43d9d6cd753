#include "time/PtDateTime.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>

namespace vantrel::ephemeris {
namespace {

std::string text(const PtDateTime& d) {
  return std::to_string(d.year) + "-" + std::to_string(d.month) + "-" + std::to_string(d.day) +
         " " + std::to_string(d.hour) + " h " + std::to_string(d.minutes);
}

/// The original formulas, with the types and order of operations on which the results depend.
PtDateTime originalFromJulianDay(double jd) {
  PtDateTime result;
  const double t = jd + 0.5;
  const auto z = static_cast<std::int32_t>(t);
  double a = z;
  if (z >= 2299161) {
    const double alpha = static_cast<std::int32_t>((z - 1867216.25) / 36524.25);
    a = (z + 1.0) + alpha - std::floor(alpha * 0.25);
  }
  const double b = a + 1524.0;
  const double c = std::trunc((b - 122.1) / 365.25);
  const double r = b - std::trunc(c * 365.25);
  const double e = std::trunc(r / 30.6001);
  result.month = static_cast<std::int32_t>(std::trunc(e < 14 ? e - 1 : e - 13));
  const bool early = result.month == 1 || result.month == 2;
  result.year = static_cast<std::int32_t>(std::trunc(early ? c - 4715.0 : c - 4716.0));
  result.day = static_cast<std::int32_t>(std::trunc((t - z) + r - std::floor(e * 30.6001)));
  const double s = (t - std::floor(t)) * 86400.0;
  result.hour = static_cast<std::int32_t>(std::floor(s / 3600.0));
  const double scaled = std::fmod(s / 60.0, 60.0) * 100000.0;
  result.minutes = static_cast<double>(std::round(static_cast<float>(scaled)) / 100000.0F);
  return result;
}

double originalModifiedJulianDay(const PtDateTime& d) {
  std::int32_t y = d.year;
  std::int32_t m = d.month;
  if (m < 3) {
    m = m + 12;
    y = y - 1;
  }
  const std::int32_t b =
      y * 10000 + m * 100 + d.day > 15821004 ? y / 400 - y / 100 + y / 4 : (y + 4716) / 4 - 1181;
  const std::int64_t midnight =
      std::int64_t{365} * y - 679004 + b + static_cast<std::int32_t>(30.6001 * (m + 1)) + d.day;
  return static_cast<double>(midnight) + d.hour / 24.0 + d.minutes / 1440.0;
}

class OriginalFormulas : public ::testing::Test {
 protected:
  static void check(double julianDay) {
    PtDateTime got;
    got.FromJulianDay(julianDay);
    const PtDateTime expected = originalFromJulianDay(julianDay);
    ASSERT_TRUE(got.year == expected.year && got.month == expected.month &&
                got.day == expected.day && got.hour == expected.hour &&
                got.minutes == expected.minutes)
        << std::hexfloat << julianDay << ": " << text(got) << ", not " << text(expected);
    check(expected);
  }
  static void check(const PtDateTime& dateTime) {
    // The original form overflows beyond.
    if (std::abs(dateTime.year) > 200000) return;
    ASSERT_EQ(dateTime.ModifiedJulianDay(), originalModifiedJulianDay(dateTime)) << text(dateTime);
  }
};

TEST_F(OriginalFormulas, AgreesOnDays) {
  struct Range {
    double from, to;
    int count;
  };
  std::mt19937_64 random(20240621);
  for (const Range& range : {Range{0, 6e6, 100000},
                             {2299100, 2299200, 20000},
                             {-2, 1000, 20000},
                             {-5e6, 0, 20000},
                             {99999999, 1e8 + 1, 1000},
                             {-7.8e7, 7.8e7, 20000}}) {
    std::uniform_real_distribution<double> day(range.from, range.to);
    for (int i = 0; i < range.count && !HasFatalFailure(); ++i) check(day(random));
  }
  // Around whole days, hours and minutes.
  struct Steps {
    int from, to;
    double perDay;
  };
  for (const Steps& steps : {Steps{-2000, 3000, 2},
                             {4598000, 4600000, 2},
                             {2460000 * 24, 2460400 * 24, 24},
                             {2000000000, 2000014400, 1440}}) {
    for (int i = steps.from; i < steps.to && !HasFatalFailure(); ++i) {
      const double day = i / steps.perDay;
      for (const double one : {day, std::nextafter(day, -1e9), std::nextafter(day, 1e9)})
        check(one);
    }
  }
}

TEST_F(OriginalFormulas, AgreesOnFieldsOutOfRange) {
  std::mt19937 random(7);
  const auto pick = [&random](int from, int to) {
    return std::uniform_int_distribution<int>(from, to)(random);
  };
  for (int i = 0; i < 100000 && !HasFatalFailure(); ++i) {
    const int furthest = i % 2 == 0 ? 2500 : 200000;
    check({pick(-furthest, furthest), pick(-20, 40), pick(-40, 120), pick(-3, 30),
           pick(-100, 6000100) / 100000.0});
    check({pick(1582, 1583), pick(1, 12), pick(0, 60), 0, 0});
  }
}

TEST(PtDateTime, CountsDaysAsAstronomersDo) {
  // From 1582-10-15 on by ERFA's eraCal2jd, before by ICU's GregorianCalendar.
  const std::pair<PtDateTime, double> cases[] = {
      {{1858, 11, 17, 0, 0}, 0},       {{2000, 1, 1, 12, 0}, 51544.5},
      {{2024, 2, 29, 0, 0}, 60369},    {{2024, 10, 17, 23, 37.5}, 60600.984375},
      {{1700, 3, 1, 0, 0}, -57969},    {{1583, 1, 1, 0, 0}, -100762},
      {{1582, 10, 15, 0, 0}, -100840}, {{1582, 10, 4, 0, 0}, -100841},
      {{1500, 2, 29, 0, 0}, -131009},  {{1, 1, 1, 0, 0}, -678577},
      {{9999, 12, 31, 0, 0}, 2973483},
  };
  for (const auto& [dateTime, modifiedJulianDay] : cases) {
    EXPECT_EQ(dateTime.ModifiedJulianDay(), modifiedJulianDay) << text(dateTime);
    PtDateTime back;
    back.FromModifiedJulianDay(modifiedJulianDay);
    EXPECT_EQ(text(back), text(dateTime));
  }
  // Skipped days count as Gregorian: the count steps back.
  EXPECT_EQ((PtDateTime{1582, 10, 5, 0, 0}).ModifiedJulianDay(), -100850);
  EXPECT_EQ((PtDateTime{1582, 10, 14, 0, 0}).ModifiedJulianDay(), -100841);
  EXPECT_EQ(PtDateTime().ModifiedJulianDay(), -678975);
}

TEST(PtDateTime, LeavesSixtyMinutesJustBelowAnHour) {
  PtDateTime dateTime;
  dateTime.FromModifiedJulianDay(51544 + 86399.9999 / 86400);
  EXPECT_EQ(text(dateTime), "2000-1-1 23 h 60.000000");
  // One hour past midnight is not a binary fraction of a day.
  dateTime.FromModifiedJulianDay((PtDateTime{2000, 1, 1, 1, 0}).ModifiedJulianDay());
  EXPECT_EQ(text(dateTime), "2000-1-1 0 h 60.000000");
  dateTime.FromJulianDay(2451545 + 20.4 / 1440);
  EXPECT_EQ(dateTime.minutes, static_cast<double>(20.4F));
  // Out of range.
  for (const double day : {2147483648.0, -2147483650.0, 1e300, double{INFINITY}, double{NAN}}) {
    dateTime.FromJulianDay(day);
    EXPECT_EQ(text(dateTime), text({})) << day;
  }
}

}  // namespace
}  // namespace vantrel::ephemeris
