#include "time/RelativeDay.h"

#include <gtest/gtest.h>

#include "base/Iso8601.h"
#include "support/Guards.h"

namespace vantrel {
namespace {

// The words are those of CLDR 42.
TEST(RelativeDay, CountsMidnightsAtThePlace) {
  const test::EnvironmentGuard locale("LC_ALL", "de_DE.UTF-8");
  const Date now = *dateFromIso8601String("2026-07-15T22:30:00Z");
  const struct {
    const char* date;
    const char* zone;
    int days;
    const char* text;
  } cases[] = {
      {"2026-07-15T22:31:00Z", "UTC", 0, "heute"},
      {"2026-07-15T23:59:59Z", "Asia/Tokyo", 0, "heute"},
      {"2026-07-16T14:59:59Z", "Asia/Tokyo", 0, "heute"},
      {"2026-07-16T15:00:00Z", "Asia/Tokyo", 1, "morgen"},
      {"2026-07-16T00:00:00Z", "UTC", 1, "morgen"},
      {"2026-07-14T23:59:00Z", "UTC", -1, "gestern"},
      {"2026-07-12T12:00:00Z", "UTC", -3, "vor 3 Tagen"},
      {"2026-07-21T12:00:00Z", "UTC", 6, "Dienstag"},
      {"2026-07-22T12:00:00Z", "UTC", 7, "in 1 Woche"},
      {"2026-08-05T12:00:00Z", "UTC", 21, "in 3 Wochen"},
      {"2026-11-15T12:00:00Z", "UTC", 123, "in 4 Monaten"},
      {"2024-07-15T12:00:00Z", "UTC", -730, "vor 2 Jahren"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.date);
    const TimeZone zone = *TimeZone::timeZoneWithName(c.zone);
    EXPECT_EQ(daysUntil(*dateFromIso8601String(c.date), zone, now), c.days);
    EXPECT_EQ(relativeDayText(*dateFromIso8601String(c.date), zone, now), c.text);
    if (c.days == 6) {
      EXPECT_EQ(relativeDayText(*dateFromIso8601String(c.date), zone, now, false), "in 6 Tagen");
    }
  }
}

}  // namespace
}  // namespace vantrel
