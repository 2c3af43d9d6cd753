#include "base/Iso8601.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vantrel {
namespace {

TEST(Iso8601, WritesTheShortestTextThatReadsBack) {
  struct Case {
    const char* name;
    double seconds;
    int offset;
    const char* text;
  };
  // Seconds by `date -u -d TEXT +%s`, before the year 0 by SQLite's strftime, less 978307200.
  const Case cases[] = {
      {"reference date", 0, 0, "2001-01-01T00:00:00Z"},
      {"summer", 740633400, 0, "2024-06-21T03:30:00Z"},
      {"offset", 740633400, 7200, "2024-06-21T05:30:00+02:00"},
      {"negative half-hour offset", 740633400, -12600, "2024-06-21T00:00:00-03:30"},
      {"half a second", 740633400.5, 0, "2024-06-21T03:30:00.5Z"},
      {"before the reference date", -0.25, 0, "2000-12-31T23:59:59.75Z"},
      {"leap day", 730900800, 0, "2024-02-29T12:00:00Z"},
      {"before the year 0", -70085294400, 0, "-0220-02-01T14:40:00Z"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(iso8601String(Date(c.seconds), c.offset), c.text);
    EXPECT_EQ(dateFromIso8601String(c.text), Date(c.seconds));
  }
  const Date awkward(742069876.576084);
  EXPECT_EQ(dateFromIso8601String(iso8601String(awkward)), awkward);
  // The seconds beside the years -9999 to 9999, by the days between them.
  for (const double outside : {1e300, -1e300, double{NAN}, 252423993600.0, -378683424001.0}) {
    EXPECT_EQ(iso8601String(Date(outside)), "") << outside;
    EXPECT_FALSE(hasIso8601String(Date(outside))) << outside;
  }
  EXPECT_EQ(iso8601String(Date(252423993599)), "9999-12-31T23:59:59Z");
  EXPECT_EQ(iso8601String(Date(252423993599), 3600), "");
}

TEST(Iso8601, RejectsOtherTexts) {
  for (const char* text : {"", "2024", "2024-06-21", "2024-06-21T03:30:00", "2023-02-29T00:00:00Z",
                           "2024-13-01T00:00:00Z", "2024-06-21T24:00:00Z", "2024-06-21T03:30:00Zz",
                           "2024-06-21T03:30:00+1", "2024-06-21T03:30:00.Z", "x024-06-21T03:30Z"}) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(dateFromIso8601String(text));
  }
  EXPECT_EQ(wallTimeFromIso8601String("2024-06-21 05:30")->minute, 30);
  EXPECT_EQ(wallTimeFromIso8601String("2024-06-21")->hour, 0);
  EXPECT_FALSE(wallTimeFromIso8601String("2024-06-31"));
}

}  // namespace
}  // namespace vantrel
