#include "platform/text/TimeZone.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "base/Iso8601.h"
#include "support/Guards.h"

namespace vantrel {
namespace {

using test::EnvironmentGuard;

TEST(TimeZone, PlacesWallTimesInGapsAndOverlaps) {
  struct Case {
    const char* name;
    const char* zone;
    const char* wall;  // read as if in UTC
    double instant;
    int offset;
  };
  // Instants and offsets by Python's zoneinfo, fold 0.
  const Case cases[] = {
      {"plain", "Asia/Kathmandu", "2024-06-21T05:30:00Z", 740619900, 20700},
      {"offset of another time", "Asia/Kathmandu", "1985-12-31T12:00:00Z", -473448600, 19800},
      {"local mean time", "Africa/Monrovia", "1950-01-01T00:00:00Z", -1609456530, -2670},
      {"rules go on", "America/New_York", "2040-07-01T00:00:00Z", 1246420800, -14400},
      {"new zone", "America/Ciudad_Juarez", "2024-07-01T12:00:00Z", 741549600, -21600},
      {"skipped", "Europe/Madrid", "2024-03-31T02:30:00Z", 733541400, 7200},
      {"repeated", "Europe/Madrid", "2024-10-27T02:30:00Z", 751681800, 7200},
      {"half an hour skipped", "Australia/Lord_Howe", "2024-10-06T02:10:00Z", 749835600, 39600},
      {"no midnight", "America/Sao_Paulo", "2018-11-04T00:00:00Z", 562993200, -7200},
      {"no midnight", "America/Havana", "2024-03-10T00:00:00Z", 731739600, -14400},
      {"no midnight", "Asia/Beirut", "2024-03-31T00:00:00Z", 733528800, 10800},
      {"no midnight", "Africa/Cairo", "2024-04-26T00:00:00Z", 735775200, 10800},
      {"second before a midnight seen twice", "America/Sao_Paulo", "2018-02-17T23:59:59Z",
       540611999, -7200},
      {"day skipped", "Pacific/Apia", "2011-12-30T10:00:00Z", 346968000, 50400},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.name) + " " + c.zone);
    const auto zone = TimeZone::timeZoneWithName(c.zone);
    ASSERT_TRUE(zone);
    const double wall = dateFromIso8601String(c.wall)->timeIntervalSinceReferenceDate();
    EXPECT_EQ(zone->dateForWallSeconds(wall), Date(c.instant));
    EXPECT_EQ(zone->dateForWallSeconds(wall + 0.25), Date(c.instant + 0.25));
    EXPECT_EQ(zone->secondsFromGMTForDate(Date(c.instant)), c.offset);
  }
}

TEST(TimeZone, RefusesNamesThatNoZoneHas) {
  for (const char* name :
       {"", "Nowhere/City", "europe/madrid", "Europe", "Europe/", "/Europe/Madrid",
        "Europe//Madrid", "../../../etc/localtime", "/etc/localtime", "file:Europe/Madrid",
        "libc:localtime", "localtime", "Europe/Madrid ", "Europe/Madrid\n", "Fixed/UTC+02:00:00",
        "zone.tab", "zone1970", "\xc3\xa9"}) {
    SCOPED_TRACE(name);
    EXPECT_FALSE(TimeZone::timeZoneWithName(name));
  }
  EXPECT_FALSE(TimeZone::timeZoneWithName(std::string_view("UTC\0", 4)));
  EXPECT_FALSE(TimeZone::timeZoneWithName(std::string(100000, 'a')));
  EXPECT_TRUE(TimeZone::timeZoneWithName("Etc/GMT+5"));
  EXPECT_TRUE(TimeZone::timeZoneWithName("America/Port-au-Prince"));
}

TEST(TimeZone, TakesTheDevicesZoneFromTheEnvironmentOrTheSystemsLink) {
  std::vector<std::pair<std::optional<std::string>, std::string>> cases = {
      {"Asia/Tokyo", "Asia/Tokyo"},
      {":Europe/Madrid", "Europe/Madrid"},
      {"/usr/share/zoneinfo/Asia/Kathmandu", "Asia/Kathmandu"},
      {"", "UTC"},
      {"Nowhere/City", "UTC"},
  };
  // A machine's own zone may have no name.
  std::error_code error;
  const auto link = std::filesystem::read_symlink("/etc/localtime", error).string();
  if (const auto at = link.find("zoneinfo/"); at != std::string::npos) {
    cases.emplace_back(std::nullopt, link.substr(at + 9));
  }
  for (const auto& [variable, zone] : cases) {
    const EnvironmentGuard guard("TZ", variable);
    EXPECT_EQ(TimeZone::defaultTimeZone().name(), zone) << variable.value_or("unset");
  }
}

TEST(TimeZone, ServesAnyInstantAndFixedOffsets) {
  const auto zone = *TimeZone::timeZoneWithName("America/New_York");
  const Date change(731746800);  // 2024-03-10T07:00:00Z
  EXPECT_EQ(zone.secondsFromGMTForDate(change), -14400);
  EXPECT_EQ(zone.secondsFromGMTForDate(change.dateByAddingTimeInterval(-0.25)), -18000);
  EXPECT_EQ(zone.secondsFromGMTForDate(Date(1e300)), zone.secondsFromGMTForDate(Date(1e14)));
  EXPECT_EQ(zone.secondsFromGMTForDate(Date(-INFINITY)), -17762);
  EXPECT_TRUE(std::isnan(zone.dateForWallSeconds(NAN).timeIntervalSinceReferenceDate()));
  const auto fixed = TimeZone::timeZoneForSecondsFromGMT(-12600);
  EXPECT_EQ(fixed.name(), "GMT-0330");
  EXPECT_EQ(fixed.dateForWallSeconds(0), Date(12600));
}

}  // namespace
}  // namespace vantrel
