#include "time/Formatters.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "base/Iso8601.h"
#include "support/Guards.h"
#include "support/IcuText.h"

namespace vantrel {
namespace {

using test::EnvironmentGuard;
using test::icuPattern;
using test::icuText;

TEST(Formatters, EqualIcuInEachLocale) {
  const Date date = *dateFromIso8601String("2024-03-05T12:05:00Z");
  const std::string zone = "Asia/Kathmandu";
  struct Case {
    const char* locale;
    bool twelveHours;
    const char* rewrittenDate = nullptr;  ///< If the year is cut to two digits.
  };
  const Case cases[] = {
      {"en_US", true},
      {"en_GB", false, "05/03/24"},
      {"fr_FR", false, "05/03/24"},
      {"de_DE", false},
      {"es_ES", false},
      {"pt_BR", false, "05/03/24"},
      {"ja_JP", false},
      {"ar_EG", true},
      {"hi_IN", true},
      {"fa_IR", false},
      {"th_TH", false},
      {"en_AU", true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.locale);
    const EnvironmentGuard locale("LC_ALL", std::string(c.locale) + ".UTF-8");
    const auto icu = [&](UDateFormatStyle day, UDateFormatStyle time) {
      return icuText(c.locale, zone, day, time, date);
    };
    const auto icuFields = [&](const char16_t* fields) {
      return icuText(c.locale, zone, UDAT_PATTERN, UDAT_PATTERN, date,
                     icuPattern(c.locale, fields));
    };
    Formatters formatters;
    formatters.setTimeZone(TimeZone::timeZoneWithName(zone));
    EXPECT_EQ(formatters.shortTimeFormatter().stringFromDate(date), icu(UDAT_NONE, UDAT_SHORT));
    EXPECT_EQ(formatters.shortDateFormatter().stringFromDate(date),
              c.rewrittenDate ? c.rewrittenDate : icu(UDAT_SHORT, UDAT_NONE));
    EXPECT_EQ(formatters.shortDateTimeFormatter().stringFromDate(date),
              icu(UDAT_SHORT, UDAT_SHORT));
    auto day = Formatters::dateFormatterWithMediumMonthAndNoYear();
    day.setTimeZone(TimeZone::timeZoneWithName(zone));
    EXPECT_EQ(day.stringFromDate(date), icuFields(u"dMMM"));
    auto dayAndTime = Formatters::dateTimeFormatterWithMediumMonthAndNoYear();
    dayAndTime.setTimeZone(TimeZone::timeZoneWithName(zone));
    EXPECT_EQ(dayAndTime.stringFromDate(date), icuFields(c.twelveHours ? u"dMMMhmm" : u"dMMMHmm"));
  }
}

TEST(Formatters, KeepFixedFormatsInEveryLocaleAndZone) {
  const EnvironmentGuard device("TZ", "Asia/Tokyo");
  const EnvironmentGuard locale("LC_ALL", "ar_EG.UTF-8");
  const Date noon = *dateFromIso8601String("2024-03-05T12:00:00Z");
  const auto literal = Formatters::RFC3339DateFormatter();
  const auto offset = Formatters::RFC3339DateFormatterWithSpecificTimeZone();
  EXPECT_EQ(literal.stringFromDate(noon), "2024-03-05T12:00:00Z");
  EXPECT_EQ(offset.stringFromDate(noon), "2024-03-05T12:00:00Z");
  EXPECT_EQ(literal.dateFromString("2024-03-05T12:00:00Z"), noon);
  for (const char* text :
       {"2024-03-05T14:00:00+02:00", "2024-03-05T14:00:00", "2024-03-05T14:00:00z"}) {
    EXPECT_EQ(literal.dateFromString(text), std::nullopt) << text;
  }
  EXPECT_EQ(offset.dateFromString("2024-03-05T14:00:00+02:00"), noon);
  EXPECT_EQ(offset.dateFromString("2024-03-05T12:00:00Z"), noon);

  // Shortest digits as Python's repr has them; halves to even in the 20th place.
  const auto numbers = Formatters::enUSPosixNumberFormatter();
  const std::pair<double, const char*> cases[] = {
      {1234.5, "1234.5"},
      {0.25, "0.25"},
      {0.1, "0.1"},
      {-0.0, "-0"},
      {1e21, "1000000000000000000000"},
      {1e-20, "0.00000000000000000001"},
      {-41.39, "-41.39"},
      {1.0 / 3, "0.3333333333333333"},
  };
  for (const auto& [number, text] : cases) {
    EXPECT_EQ(numbers.stringFromNumber(number), text);
    EXPECT_EQ(numbers.numberFromString(text), number) << text;
  }
  EXPECT_EQ(numbers.stringFromNumber(5e-21), "0");
}

TEST(Formatters, AreCreatedOnceAndKeepTheirLocale) {
  std::vector<const Formatters*> seen(8);
  {
    const EnvironmentGuard locale("LC_ALL", "de_DE.UTF-8");
    std::vector<std::thread> threads;
    for (auto& one : seen) threads.emplace_back([&] { one = &Formatters::sharedInstance(); });
    for (auto& thread : threads) thread.join();
  }
  const EnvironmentGuard locale("LC_ALL", "en_US.UTF-8");
  for (const auto* one : seen) EXPECT_EQ(one, &Formatters::sharedInstance());
  Formatters::sharedInstance().setTimeZone(TimeZone::timeZoneWithName("Asia/Tokyo"));
  EXPECT_EQ(seen.front()->shortDateFormatter().stringFromDate(Date(0)), "01.01.01");
  EXPECT_EQ(seen.front()->shortTimeFormatter().stringFromDate(Date(0)), "09:00");
}

}  // namespace
}  // namespace vantrel
