#include "platform/text/TimeZone.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cmath>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/Iso8601.h"
#include "support/Guards.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
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

TEST(TimeZone, RejectsUnknownAndMalformedNames) {
  std::istringstream names(
      "|Nowhere/City|europe/madrid|Europe|Europe/|/Europe/Madrid|Europe//Madrid|"
      "../../../etc/localtime|/etc/localtime|file:Europe/Madrid|libc:localtime|localtime|"
      "Europe/Madrid |Europe/Madrid\n|Fixed/UTC+02:00:00|zone.tab|zone1970|GMT+05|GMT+545|GMT+0560|"
      "GMT+2600|GMT-0000|GMT+-100|GMT+05450|CET-1CEST|EST5|\xc3\xa9");
  for (std::string name; std::getline(names, name, '|');) {
    EXPECT_FALSE(TimeZone::timeZoneWithName(name)) << name;
  }
  EXPECT_FALSE(TimeZone::timeZoneWithName(std::string_view("UTC\0", 4)));
  EXPECT_FALSE(TimeZone::timeZoneWithName(std::string(100000, 'a')));
  EXPECT_TRUE(TimeZone::timeZoneWithName("Etc/GMT+5"));
  EXPECT_TRUE(TimeZone::timeZoneWithName("America/Port-au-Prince"));
}

TEST(TimeZone, ReadsOnlySmallRegularFilesOfTheDatabase) {
  const test::TemporaryDirectory database;
  const EnvironmentGuard folder("TZDIR", database.path().string());
  const auto madrid = test::readFile("/usr/share/zoneinfo/Europe/Madrid");
  test::writeFile(database / "Whole", madrid);
  test::writeFile(database / "Text", "Europe/Madrid\n");
  test::writeFile(database / "Empty", "");
  test::writeFile(database / "Huge", madrid + std::string(std::size_t{1} << 20, '\n'));
  fs::create_directory(database / "Folder");
  ASSERT_EQ(::mkfifo((database / "Fifo").c_str(), 0600), 0);
  EXPECT_TRUE(TimeZone::timeZoneWithName("Whole"));
  for (const char* name : {"Text", "Empty", "Huge", "Folder", "Fifo"}) {
    EXPECT_FALSE(TimeZone::timeZoneWithName(name)) << name;
  }
  EXPECT_TRUE(TimeZone::timeZoneWithName("UTC"));
}

TEST(TimeZone, ReadsTheDevicesZoneFromTheEnvironment) {
  const auto system = TimeZone::systemTimeZone().name();
  const std::pair<std::optional<std::string>, std::string> cases[] = {
      {"Asia/Tokyo", "Asia/Tokyo"},
      {":Europe/Madrid", "Europe/Madrid"},
      {"/usr/share/zoneinfo/Asia/Kathmandu", "Asia/Kathmandu"},
      {"EST5EDT", "EST5EDT"},
      {"<+03>-3", "GMT+0300"},
      {"UTC0", "GMT"},
      {"NST3:30", "GMT-0330"},
      {"EST5EDT,M3.2.0,M11.1.0", "EST5EDT"},
      // No zone has this rule; the offset is that of the date.
      {"AAA-4BBB,J182,J200", "GMT+0400"},
      {"", "UTC"},
      {"Nowhere/City", "UTC"},
      {"Europe", "UTC"},
      {"../../../etc/localtime", "UTC"},
      {":../zoneinfo/Europe/Madrid", "UTC"},
      {std::nullopt, system},
      {":/etc/localtime", system},
      {":localtime", system},
      {"/etc/passwd", system},
      {"/usr/share/zoneinfo/../../../etc/passwd", system},
  };
  const test::FakeClock clock(Date(0));
  for (const auto& [variable, name] : cases) {
    const EnvironmentGuard guard("TZ", variable);
    const auto zone = TimeZone::defaultTimeZone();
    EXPECT_EQ(zone.name(), name) << variable.value_or("unset");
    const auto named = TimeZone::timeZoneWithName(name);
    ASSERT_TRUE(named) << name;
    EXPECT_EQ(named->secondsFromGMTForDate(Date(0)), zone.secondsFromGMTForDate(Date(0))) << name;
  }
}

TEST(TimeZone, FindsTheNameOfTheSystemsZone) {
  struct Case {
    const char* name;
    const char* timezone;
    std::string localtime;  ///< The content of a file, or the path that a link has.
    const char* zone;
  };
  const auto content = [](const char* zone) {
    return test::readFile(std::string("/usr/share/zoneinfo/") + zone);
  };
  // Other bytes for the same rule.
  auto changed = content("Europe/Madrid");
  changed[5] = 1;
  const Case cases[] = {
      {"link", "Asia/Tokyo\n", "../usr/share/zoneinfo/Europe/Madrid", "Europe/Madrid"},
      {"link to nowhere", "", "/usr/share/zoneinfo/Nowhere/City", "UTC"},
      {"copy", "", content("Europe/Madrid"), "Europe/Madrid"},
      {"copy that is named", "Japan\n", content("Asia/Tokyo"), "Japan"},
      {"copy under an old name", "Asia/Tokyo\n", content("Europe/Madrid"), "Europe/Madrid"},
      {"copy of another database", "Europe/Madrid", changed, "Europe/Madrid"},
      {"copy under a path", "../../etc/passwd\n", content("Asia/Kathmandu"), "Asia/Kathmandu"},
      {"Greenwich", "", content("Etc/UTC"), "UTC"},
      {"no zone", "Europe/Madrid\n", "Europe/Madrid\n", "UTC"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const test::TemporaryDirectory etc;
    if (c.localtime.starts_with("TZif") || c.localtime.ends_with('\n')) {
      test::writeFile(etc / "localtime", c.localtime);
    } else {
      fs::create_symlink(c.localtime, etc / "localtime");
    }
    test::writeFile(etc / "timezone", c.timezone);
    EXPECT_EQ(TimeZone::systemTimeZone(etc.path()).name(), c.zone);
  }
  EXPECT_EQ(TimeZone::systemTimeZone("/nowhere").name(), "UTC");
}

Date dateAt(std::int64_t instant) {
  return Date::dateWithTimeIntervalSince1970(static_cast<double>(instant));
}

void expectSameAsLibc(const TimeZone& zone, std::int64_t first) {
  const auto expectSame = [&](std::int64_t instant) {
    const auto time = static_cast<std::time_t>(instant);
    std::tm fields{};
    ::localtime_r(&time, &fields);
    const Date date = dateAt(instant);
    EXPECT_TRUE(zone.secondsFromGMTForDate(date) == fields.tm_gmtoff &&
                zone.isDaylightSavingTimeForDate(date) == (fields.tm_isdst > 0) &&
                zone.abbreviationForDate(date) == fields.tm_zone)
        << instant;
    return fields.tm_gmtoff;
  };
  constexpr std::int64_t k2060 = 2'840'140'800;
  constexpr std::int64_t kTenWeeks = 6'048'000;
  for (auto instant = first; instant < k2060; instant += kTenWeeks) expectSame(instant);
  auto change = zone.nextDaylightSavingTimeTransitionAfterDate(dateAt(first));
  for (; change && *change < dateAt(k2060);
       change = zone.nextDaylightSavingTimeTransitionAfterDate(*change)) {
    const auto instant = static_cast<std::int64_t>(change->timeIntervalSince1970());
    const auto before = expectSame(instant - 1);
    const auto after = expectSame(instant);
    // The ends of the gap or overlap, read by the offset before it.
    for (const auto wall :
         {instant + std::min(before, after), instant + std::max(before, after) - 1}) {
      const auto seconds = static_cast<double>(wall) - Date::kReferenceDateSince1970;
      EXPECT_EQ(zone.dateForWallSeconds(seconds), dateAt(wall - before)) << wall;
    }
  }
}

TEST(TimeZone, AgreesWithLibcInEveryZone) {
  constexpr std::int64_t k1901 = -2'177'452'800;
  const auto check = [](const std::string& variable, std::int64_t first) {
    SCOPED_TRACE(variable);
    const EnvironmentGuard guard("TZ", variable);
    ::tzset();
    expectSameAsLibc(TimeZone::defaultTimeZone(), first);
  };
  // "Z NAME …" is a zone, "L ZONE NAME" a link.
  std::ifstream database("/usr/share/zoneinfo/tzdata.zi");
  int count = 0;
  for (std::string line; std::getline(database, line) && !HasFailure();) {
    std::istringstream words(line);
    std::string kind, name;
    words >> kind >> name;
    if (kind == "L") words >> name;
    if (kind != "L" && kind != "Z") continue;
    check(name, k1901);
    ++count;
  }
  EXPECT_GT(count, 400);
  // The library's rules begin in 1970.
  for (const char* rule : {"<+03>-3", "CET-1CEST,M3.5.0,M10.5.0/3", "EST5EDT,M3.2.0,M11.1.0",
                           "<-03>3<-02>,M3.5.0/-2,M10.5.0/-1", "IST-2IDT,M3.4.4/26,M10.5.0",
                           "NZST-12NZDT,J300,J60/3", "AAA3:30BBB2:15:30,59/1,299/2:30:15",
                           "IST-1GMT0,M10.5.0,M3.5.0/1", "AAA+9BBB,M2.5.6/-167,M11.4.3/167"}) {
    check(rule, 31'536'000);
  }
}

TEST(TimeZone, SupportsAnyInstantAndFixedOffsets) {
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
  EXPECT_EQ(fixed.abbreviationForDate(Date(0)), "-0330");
  EXPECT_EQ(TimeZone::timeZoneWithName("GMT-0330")->dateForWallSeconds(0), Date(12600));
}

}  // namespace
}  // namespace vantrel
