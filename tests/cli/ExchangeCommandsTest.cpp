#include <gmock/gmock.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "cli/CommandLineFixture.h"

namespace vantrel {
namespace {

using nlohmann::json;
using test::CommandLineTest;
using test::isOneLine;
using testing::HasSubstr;

class ExchangeCommands : public CommandLineTest {
 protected:
  /// The plans without what only this store knows of them.
  json plans(const std::map<std::string, std::string>& more = {}) const {
    auto list = json::parse(run({"plan", "list", "--json"}, more).output)["plans"];
    for (auto& plan : list) {
      for (const char* key : {"uri", "link"}) plan.erase(key);
    }
    return list;
  }

  std::string file(const std::string& name) const { return (directory_ / name).string(); }

  /// What a Python program prints of an exported file: a reader this project did not write.
  std::string seenBy(const std::string& program, const std::string& name) const {
    const auto result = test::runProgram(
        {"/usr/bin/python3", "-c", "import sys\n" + program, file(name)}, {{"TZ", "UTC"}});
    return result.output + result.errors;
  }

  /// Plans that each format finds something to stumble over.
  void addPlans() const {
    add({"--name", "=1+1, \"q\" <b>&;\\", "--notes", "line 1\nline 2 " + std::string(100, 'x'),
         "--date", "2026-10-25 02:30", "--latitude", "41.390000012345678", "--longitude", "180"});
    add({"--name", "黎明 🌅", "--date", "2011-05-01 12:00", "--timezone", "Asia/Tehran",
         "--latitude", "-1e-7", "--longitude", "-2.5"});
    add({"--name", "far", "--date", "2043-07-01 12:00", "--timezone", "Africa/Cairo"});
    const std::string undated = add({"--name", "undated"});
    const std::string anywhere = add({"--name", "no zone", "--date", "2026-01-01T00:00:00Z"});
    for (const auto& plan : {undated, anywhere}) run({"plan", "edit", plan, "--no-timezone"});
  }

 private:
  test::TemporaryDirectory directory_;
};

TEST_F(ExchangeCommands, ComeBackAsTheyWent) {
  addPlans();
  const json before = plans();
  ASSERT_EQ(before.size(), 5U);
  for (const std::string format : {"ics", "json"}) {
    SCOPED_TRACE(format);
    const std::string name = file("plans." + format);
    ASSERT_EQ(run({"plan", "export", name}).output, "");
    EXPECT_EQ(run({"plan", "import", name}).output, "0 added, 0 changed, 5 skipped\n");
    const std::map<std::string, std::string> other = {
        {"VANTREL_GROUP_CONTAINER", file("other-" + format)}, {"TZ", "Asia/Tokyo"}};
    EXPECT_THAT(run({"plan", "import", name, "--dry-run"}, other).output,
                HasSubstr("5 added, 0 changed, 0 skipped (dry run"));
    EXPECT_EQ(run({"plan", "list"}, other).exitCode, 66);
    EXPECT_EQ(json::parse(run({"plan", "import", "--json", name}, other).output)["added"].size(),
              5U);
    EXPECT_EQ(plans({{"VANTREL_GROUP_CONTAINER", file("other-" + format)}}), before);
    // One plan differs in each store; importing makes them equal again, through a pipe.
    const std::string identifier = before[0]["uniqueIdentifier"];
    run({"plan", "edit", identifier, "--name", "elsewhere", "--no-latitude"}, other);
    const auto changed = run({"plan", "import"}, other, test::readFile(name));
    EXPECT_THAT(changed.output, HasSubstr("0 added, 1 changed, 4 skipped\n"));
    EXPECT_EQ(plans({{"VANTREL_GROUP_CONTAINER", file("other-" + format)}}), before);
  }
}

TEST_F(ExchangeCommands, AreReadByOthers) {
  addPlans();
  for (const char* format : {"ics", "csv", "gpx", "kml"}) {
    ASSERT_EQ(run({"plan", "export", file(std::string("plans.") + format)}).exitCode, 0);
  }
  // The rules in the file, as another reader takes them, against those of the system.
  EXPECT_EQ(seenBy("import icalendar, zoneinfo\n"
                   "c = icalendar.Calendar.from_ical(open(sys.argv[1], 'rb').read())\n"
                   "zones = {z['TZID']: z.to_tz() for z in c.walk('VTIMEZONE')}\n"
                   "for e in c.walk('VEVENT'):\n"
                   "    t = e['DTSTART'].dt; z = e['DTSTART'].params.get('TZID')\n"
                   "    w = t.replace(tzinfo=None)\n"
                   "    if z: assert zones[z].localize(w, is_dst=True).utcoffset() == "
                   "zoneinfo.ZoneInfo(z).utcoffset(w), (z, w)\n"
                   "    print(e['SUMMARY'], w, z, len(e.get('DESCRIPTION', '')))\n"
                   "print([str(t['SUMMARY']) for t in c.walk('VTODO')])",
                   "plans.ics"),
            "黎明 🌅 2011-05-01 12:00:00 Asia/Tehran 0\n"
            "no zone 2026-01-01 00:00:00 None 0\n"
            "=1+1, \"q\" <b>&;\\ 2026-10-25 02:30:00 Europe/Madrid 114\n"
            "far 2043-07-01 12:00:00 Africa/Cairo 0\n"
            "['undated']\n");
  EXPECT_EQ(seenBy("import gpxpy\n"
                   "for w in gpxpy.parse(open(sys.argv[1])).waypoints:\n"
                   "    print(w.name, w.latitude, w.longitude, w.time, w.comment)",
                   "plans.gpx"),
            "黎明 🌅 -1e-07 -2.5 2011-05-01 07:30:00+00:00 2011-05-01 12:00 Asia/Tehran\n"
            "=1+1, \"q\" <b>&;\\ 41.39000001234568 -180.0 2026-10-25 00:30:00+00:00 "
            "2026-10-25 02:30 Europe/Madrid\n");
  EXPECT_EQ(test::runProgram({"xmllint", "--xpath",
                              "string(//*[local-name()='Placemark'][3]/*[local-name()="
                              "'TimeStamp']/*)",
                              file("plans.kml")})
                .output,
            "2026-10-25T02:30:00+02:00\n");
  EXPECT_EQ(seenBy("import csv\n"
                   "rows = list(csv.reader(open(sys.argv[1], newline='')))\n"
                   "print([len(r) for r in rows], rows[3][1:7:2], len(rows[3][2]))",
                   "plans.csv"),
            "[9, 9, 9, 9, 9, 9] ['\\'=1+1, \"q\" <b>&;\\\\', '2026-10-25T00:30:00Z', "
            "'2026-10-25T02:30:00+02:00'] 114\n");
}

TEST_F(ExchangeCommands, PlaceForeignEvents) {
  // As calendars of offices write them: their own names for zones, with the rules beside.
  const std::string zones =
      "BEGIN:VTIMEZONE\nTZID:W. Europe Standard Time\n"
      "BEGIN:STANDARD\nDTSTART:16010101T030000\nTZOFFSETFROM:+0200\nTZOFFSETTO:+0100\n"
      "RRULE:FREQ=YEARLY;INTERVAL=1;BYDAY=-1SU;BYMONTH=10\nEND:STANDARD\n"
      "BEGIN:DAYLIGHT\nDTSTART:16010101T020000\nTZOFFSETFROM:+0100\nTZOFFSETTO:+0200\n"
      "RRULE:FREQ=YEARLY;INTERVAL=1;BYDAY=-1SU;BYMONTH=3\nEND:DAYLIGHT\nEND:VTIMEZONE\n"
      "BEGIN:VTIMEZONE\nTZID:On board\nBEGIN:STANDARD\nDTSTART:19700101T000000\n"
      "TZOFFSETFROM:+0700\nTZOFFSETTO:+0700\nEND:STANDARD\nEND:VTIMEZONE\n";
  struct Case {
    const char* lines;
    const char* date;
    json zone;
    json notes;
  };
  // Instants by `date -u -d 'TZ="ZONE" TEXT'`.
  const Case cases[] = {
      {"DTSTART;TZID=W. Europe Standard Time:20260715T100000", "2026-07-15T08:00:00Z",
       "Europe/Berlin", nullptr},
      {"DTSTART;TZID=On board:20260715T100000\nLOCATION:Deck 7\\, stern", "2026-07-15T03:00:00Z",
       nullptr, "Deck 7, stern"},
      {"DTSTART;TZID=Tokyo Standard Time:20260715T100000\nLOCATION:35.5, 138.75",
       "2026-07-15T01:00:00Z", "Asia/Tokyo", nullptr},
      {"DTSTART;TZID=\"/registry.example/Asia/Kathmandu\":20260715T100000", "2026-07-15T04:15:00Z",
       "Asia/Kathmandu", nullptr},
      {"DTSTART:20260329T023000\nDESCRIPTION:a\\nb\r\n  c", "2026-03-29T01:30:00Z", "Europe/Madrid",
       "a\nb c"},
      {"DTSTART;VALUE=DATE:20260715\nRRULE:FREQ=DAILY", "2026-07-14T22:00:00Z", "Europe/Madrid",
       nullptr},
      {"DTSTART:20260715T100000Z\nATTACH:data\nBEGIN:VALARM\nDESCRIPTION:no\nEND:VALARM",
       "2026-07-15T10:00:00Z", nullptr, nullptr},
  };
  std::string text =
      "\xEF\xBB\xBF"
      "BEGIN:VCALENDAR\n" +
      zones;
  for (const auto& one : cases) {
    text += std::string("BEGIN:VEVENT\nSUMMARY:") + one.date + "\n" + one.lines + "\nEND:VEVENT\n";
  }
  text += "BEGIN:VEVENT\nSTATUS:CANCELLED\nDTSTART:20260715T100000Z\nEND:VEVENT\nEND:VCALENDAR\n";
  const auto first = json::parse(run({"plan", "import", "--json"}, {}, text).output);
  EXPECT_EQ(first["added"].size(), 7U);
  EXPECT_EQ(first["notes"].size(), 3U) << first;
  EXPECT_EQ(run({"plan", "import"}, {}, text).output, "0 added, 0 changed, 7 skipped\n");
  for (const auto& plan : plans()) {
    SCOPED_TRACE(plan.dump());
    const auto one = std::find_if(std::begin(cases), std::end(cases),
                                  [&](const Case& c) { return plan["name"] == c.date; });
    ASSERT_NE(one, std::end(cases));
    EXPECT_EQ(plan["date"], one->date);
    EXPECT_EQ(plan["timezone"], one->zone);
    EXPECT_EQ(plan["notes"], one->notes);
    EXPECT_EQ(plan["latitude"], one->zone == "Asia/Tokyo" ? json(35.5) : json(nullptr));
  }
}

TEST_F(ExchangeCommands, RefuseWhatMakesNoSense) {
  const auto event = [](const std::string& lines) {
    return "BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:good\nDTSTART:20260101T000000Z\nEND:VEVENT\n"
           "BEGIN:VEVENT\n" +
           lines + "\nEND:VEVENT\nEND:VCALENDAR\n";
  };
  std::string nested = "BEGIN:VCALENDAR\n";
  for (int i = 0; i < 100000; ++i) nested += "BEG\n IN:VEVENT\n";
  const std::string secondly =
      "DTSTART;TZID=Odd one:20260101T000000\nEND:VEVENT\nBEGIN:VTIMEZONE\nTZID:Odd one\n"
      "BEGIN:STANDARD\nDTSTART:16010101T000000\nTZOFFSETFROM:+0100\nTZOFFSETTO:+0200\n"
      "RRULE:FREQ=SECONDLY\nEND:STANDARD\nEND:VTIMEZONE\nBEGIN:VEVENT\nDTSTART:20260101T000000Z";
  const std::pair<std::string, const char*> cases[] = {
      {"", "BEGIN:VCALENDAR"},
      {"<html>", "BEGIN:VCALENDAR"},
      {event("UID:a").substr(0, 90), "not closed"},
      {"BEGIN:VCALENDAR\nEND:VEVENT\n", "within VCALENDAR"},
      {nested, "nested too deeply"},
      {event(std::string("DTSTART:2026\0", 13)), "UTF-8"},
      {event("SUMMARY:\xE9"), "UTF-8"},
      {event("DTSTART:20260230T000000Z"), "event 2"},
      {event("DTSTART:soon"), "event 2"},
      {event("UID:good\nDTSTART:20260102T000000Z"), "identifier of event 1"},
      {event("UID:" + std::string(2000, 'u') + "\nDTSTART:20260101T000000Z"), "1024"},
      {event("DTSTART:20260101T000000Z\nGEO:41;abc"), "GEO"},
      {event("DTSTART:20260101T000000Z\nGEO:91;0"), "latitude"},
      {event("DTSTART;TZID=Nowhere Time:20260101T000000"), "Nowhere Time"},
      {event(secondly), "Odd one"},
      {event("DTSTART:20260101T000000Z\nDESCRIPTION:" + std::string(2 << 20, 'x')), "DESCRIPTION"},
      {std::string(100000, '['), "nested"},
      {"[{\"name\": \"a\"},\n]", "line 2"},
      {"{\"plan\": []}", "\"plans\""},
      {"[{}, {\"name\": 1}]", "plans[1].name"},
      {"[{\"latitude\": \"1\"}]", "plans[0].latitude"},
      {"[{\"longitude\": 181}]", "180"},
      {"[{\"longitude\": 1e999}]", "number"},
      {"[{\"lattitude\": 1}]", "lattitude"},
      {"[{\"timezone\": \"../../etc/passwd\"}]", "time zone"},
      {"[{\"date\": \"tomorrow\"}]", "plans[0].date"},
      {"[{\"name\": \"a\\u0000b\"}]", "NUL"},
      {"[{\"uniqueIdentifier\": \"A\", \"name\": \"a\"}, {\"uniqueIdentifier\": \"A\"}]",
       "plans[0]"},
  };
  for (const auto& [text, why] : cases) {
    SCOPED_TRACE(text.substr(0, 200));
    const auto result = run({"plan", "import"}, {}, text);
    EXPECT_EQ(result.exitCode, 65);
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(isOneLine(result.errors)) << result.errors;
    EXPECT_THAT(result.errors, HasSubstr(why));
  }
  EXPECT_FALSE(std::filesystem::exists(store()));
  EXPECT_EQ(run({"plan", "import", file("none.ics")}).exitCode, 66);
  EXPECT_EQ(run({"plan", "import", "--format", "gpx"}).exitCode, 64);
}

TEST_F(ExchangeCommands, ReplaceFilesWholeOrNotAtAll) {
  add({"--name", "a"});
  const std::string target = file("kept.json");
  test::writeFile(target, "before");
  ::chmod(target.c_str(), 0640);
  ASSERT_EQ(run({"plan", "export", target, "--from", "today"}).exitCode, 0);
  EXPECT_EQ(test::readFile(target), "{\n  \"plans\": []\n}\n");
  struct stat status {};
  ::stat(target.c_str(), &status);
  EXPECT_EQ(status.st_mode & 0777, 0640U);
  EXPECT_EQ(run({"plan", "export", file("no/such.ics")}).exitCode, 73);
  EXPECT_EQ(run({"plan", "export", "/dev/full", "--format", "csv"}).exitCode, 74);
  EXPECT_EQ(run({"plan", "export", file("plans.txt")}).exitCode, 64);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(file("")), {}), 1);
}

}  // namespace
}  // namespace vantrel
