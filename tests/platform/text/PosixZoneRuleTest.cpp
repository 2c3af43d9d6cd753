#include "platform/text/PosixZoneRule.h"

#include <gtest/gtest.h>

#include <sstream>

namespace vantrel {
namespace {

TEST(PosixZoneRule, RejectsMalformedRules) {
  std::istringstream texts(
      "|E|EST|EST+|5|ES5|EST25|EST5:60|EST5:|<EST5|<+3>-3|E+T5|<E T>5|EST5 |EST5EDT |EST5EDT4,|"
      "EST5EDT,M3.2.0|EST5EDT,M3.2.0,|,M3.2.0|EST5,M3.2.0,M11.1.0|EST5EDT,M0.2.0,M11.1.0|"
      "EST5EDT,M13.2.0,M11.1.0|EST5EDT,M3.0.0,M11.1.0|EST5EDT,M3.6.0,M11.1.0|"
      "EST5EDT,M3.2.7,M11.1.0|EST5EDT,M3.2,M11.1.0|EST5EDT,J0,J1|EST5EDT,J366,J1|EST5EDT,366,1|"
      "EST5EDT,J1/168,J9|EST5EDT,J1/,J9|EST5EDT,J1,J9,|EST5EDT,J0001,J9|EST99999999999|"
      "Europe/Madrid");
  for (std::string text; std::getline(texts, text, '|');) {
    EXPECT_FALSE(PosixZoneRule::parsed(text)) << text;
  }
}

TEST(PosixZoneRule, HasTheDefaultDaysOfLibc) {
  EXPECT_EQ(PosixZoneRule::parsed("CET-1CEST"),
            PosixZoneRule::parsed("CET-1CEST-2,M3.2.0/02:00:00,M11.1.0/2"));
}

TEST(PosixZoneRule, SupportsPermanentDaylightSavingTime) {
  // The first two are examples of RFC 8536 and of its successor.
  for (const auto& [text, offset] : {std::pair("EST5EDT,0/0,J365/25", -4 * 3600),
                                     {"XXX3EDT4,0/0,J365/23", -4 * 3600},
                                     {"AAA3BBB,J1/2,J1/3", -3 * 3600}}) {
    const auto rule = PosixZoneRule::parsed(text);
    ASSERT_TRUE(rule) << text;
    for (const std::int64_t instant : {-200'000'000'000'000, 0L, 1'704'067'200L, 1'720'000'000L}) {
      const auto period = rule->periodAt(instant);
      EXPECT_EQ(period.offset, offset) << text;
      EXPECT_EQ(period.isDaylight, offset == -4 * 3600) << text;
      EXPECT_EQ(period.begin, -ZonePeriod::kForever) << text;
      EXPECT_EQ(period.end, ZonePeriod::kForever) << text;
    }
  }
}

}  // namespace
}  // namespace vantrel
