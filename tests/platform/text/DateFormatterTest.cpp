#include "platform/text/DateFormatter.h"

#include <gtest/gtest.h>

#include <cmath>

#include "base/Iso8601.h"
#include "support/Guards.h"
#include "support/IcuText.h"

namespace vantrel {
namespace {

using Style = DateFormatter::Style;
using test::at;
using test::EnvironmentGuard;
using test::icuText;

TEST(DateFormatter, WritesTheStylesOfALocaleInAZone) {
  struct Styles {
    Style date, time;
    UDateFormatStyle icuDate, icuTime;
  };
  const Styles styles[] = {{Style::kShort, Style::kNone, UDAT_SHORT, UDAT_NONE},
                           {Style::kNone, Style::kShort, UDAT_NONE, UDAT_SHORT},
                           {Style::kFull, Style::kMedium, UDAT_FULL, UDAT_MEDIUM}};
  DateFormatter formatter;
  for (const char* locale : {"en_US", "en_GB", "de_DE", "fr_FR", "es_ES", "ja_JP", "ar_EG", "fi_FI",
                             "th_TH", "fa_IR", "zh_TW", "en_US_POSIX"}) {
    formatter.setLocale(Locale(locale));
    for (const char* zone : {"Asia/Tokyo", "America/New_York", "Asia/Kathmandu"}) {
      SCOPED_TRACE(std::string(locale) + " " + zone);
      formatter.setTimeZone(TimeZone::timeZoneWithName(zone));
      for (const Date date : {at("2024-06-21T22:30:00Z"), at("2024-12-31T23:59:59.75Z")}) {
        for (const auto& s : styles) {
          formatter.setDateStyle(s.date);
          formatter.setTimeStyle(s.time);
          EXPECT_EQ(formatter.stringFromDate(date),
                    icuText(locale, zone, s.icuDate, s.icuTime, date));
        }
      }
    }
  }
}

TEST(DateFormatter, FollowsTheSystemsRulesAndTheDevicesZone) {
  const EnvironmentGuard device("TZ", "Europe/Madrid");
  DateFormatter formatter;
  formatter.setLocale(Locale("en_GB"));
  formatter.setDateStyle(Style::kShort);
  formatter.setTimeStyle(Style::kShort);
  const Date date = at("2024-07-05T18:00:00Z");
  EXPECT_EQ(formatter.stringFromDate(date), "05/07/2024, 20:00");
  // A zone that is newer than ICU's rules; the text by Python's zoneinfo.
  formatter.setTimeZone(TimeZone::timeZoneWithName("America/Ciudad_Juarez"));
  EXPECT_EQ(formatter.stringFromDate(date), "05/07/2024, 12:00");
  formatter.setTimeZone(TimeZone::timeZoneWithName("Nowhere/City"));
  EXPECT_EQ(formatter.stringFromDate(date), "05/07/2024, 20:00");
  EXPECT_EQ(formatter.stringFromDate(Date(NAN)), "");
  formatter.setDateStyle(Style::kNone);
  formatter.setTimeStyle(Style::kNone);
  EXPECT_EQ(formatter.stringFromDate(date), "");
  EXPECT_EQ(formatter.dateFormat(), "");
}

TEST(DateFormatter, WritesPatternsUntilAStyleIsSet) {
  DateFormatter formatter;
  formatter.setLocale(Locale("en_GB"));
  formatter.setTimeZone(TimeZone::timeZoneForSecondsFromGMT(0));
  formatter.setDateStyle(Style::kShort);
  EXPECT_EQ(formatter.dateFormat(), "dd/MM/y");
  formatter.setDateFormat("dd/MM/yy");
  EXPECT_EQ(formatter.stringFromDate(at("2024-03-05T12:00:00Z")), "05/03/24");
  formatter.setDateFormat("h:m:s 'o''clock' a''d.M.y");
  EXPECT_EQ(formatter.stringFromDate(Date(-0.25)), "11:59:59 o'clock pm'31.12.2000");
  EXPECT_EQ(formatter.stringFromDate(at("1582-10-14T00:00:00Z")), "12:0:0 o'clock am'4.10.1582");
  formatter.setDateFormat("y-MM-dd HH:mm:ss 'o''clock' ZZZZZ");
  EXPECT_EQ(formatter.stringFromDate(Date(-0.25)), "2000-12-31 23:59:59 o'clock Z");
  EXPECT_EQ(formatter.stringFromDate(at("1582-10-14T00:00:00Z")), "1582-10-04 00:00:00 o'clock Z");
  formatter.setTimeZone(TimeZone::timeZoneWithName("Asia/Kathmandu"));
  EXPECT_EQ(formatter.stringFromDate(Date(0)), "2001-01-01 05:45:00 o'clock +05:45");
  formatter.setDateStyle(Style::kShort);
  EXPECT_EQ(formatter.dateFormat(), "dd/MM/y");
}

TEST(DateFormatter, ReadsWhatFitsThePattern) {
  struct Case {
    const char *pattern, *zone, *text;
    const char* instant;  // null: refused
  };
  constexpr auto* kOffset = "yyyy-MM-dd'T'HH:mm:ssZZZZZ";
  constexpr auto* kWall = "yyyy-MM-dd HH:mm";
  constexpr auto* kLiteral = "yyyy-MM-dd HH 'o''clock Z'";
  const Case cases[] = {
      {kOffset, "Asia/Tokyo", "2024-03-05T14:00:00Z", "2024-03-05T14:00:00Z"},
      {kWall, "Asia/Kathmandu", "2024-03-05 12:00", "2024-03-05T06:15:00Z"},
      {kWall, "America/Havana", "2024-03-10 00:30", "2024-03-10T05:30:00Z"},
      {kWall, "Europe/Madrid", "2024-10-27 02:30", "2024-10-27T00:30:00Z"},
      {kLiteral, "GMT", "2024-03-05 12 o'clock Z", "2024-03-05T12:00:00Z"},
      {kLiteral, "GMT", "2024-03-05 12 o'clock ", nullptr},
      {kLiteral, "GMT", "2024-03-05 12 o'clock", nullptr},
      {kLiteral, "GMT", "2024-03-05 12", nullptr},
      {kWall, "GMT", "2024-03-05 12:00x", nullptr},
      {kWall, "GMT", "2024-03-05", nullptr},
      {kWall, "GMT", "2024-02-30 12:00", nullptr},
      {kWall, "GMT", "", nullptr},
      {kWall, "GMT", "\xff\xfe", nullptr},
  };
  DateFormatter formatter;
  formatter.setLocale(Locale("en_US_POSIX"));
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    formatter.setDateFormat(c.pattern);
    formatter.setTimeZone(TimeZone::timeZoneWithName(c.zone));
    const auto date = formatter.dateFromString(c.text);
    ASSERT_EQ(date.has_value(), c.instant != nullptr);
    if (!date) continue;
    EXPECT_EQ(iso8601String(*date), c.instant);
    // Parsing does not change the formatter's state.
    EXPECT_EQ(formatter.dateFromString(formatter.stringFromDate(*date)), date);
  }
}

}  // namespace
}  // namespace vantrel
