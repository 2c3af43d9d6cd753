#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <thread>

#include "cli/CommandLineFixture.h"
#include "support/TestStore.h"

namespace vantrel {
namespace {

using nlohmann::json;
using test::CommandLineTest;
using test::isOneLine;
using testing::HasSubstr;

using PlanCommands = CommandLineTest;

TEST_F(PlanCommands, KeepAPlanFromAddToRemove) {
  const std::string identifier = add({"--name", "Sunrise at the old harbour", "--notes",
                                      "Mole\nat 05:30", "--date", "2026-07-16 05:52", "--timezone",
                                      "Asia/Tokyo", "--latitude", "-.5", "--longitude=-2.25"});
  EXPECT_THAT(identifier, testing::MatchesRegex("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}"));

  auto plan = json::parse(run({"plan", "show", identifier, "--json"}).output);
  const std::string uri = plan["uri"];
  EXPECT_THAT(uri, testing::MatchesRegex("x-coredata://[0-9A-F-]{36}/Planning/p1"));
  // Python: urllib.parse.quote(uri, safe="!$&'()*+,-.:;=[]_~")
  const std::string store = uri.substr(13, 36);
  EXPECT_EQ(plan,
            json({{"uniqueIdentifier", identifier},
                  {"uri", uri},
                  {"link", "vantrel://plan?id=x-coredata:%2F%2F" + store + "%2FPlanning%2Fp1"},
                  {"name", "Sunrise at the old harbour"},
                  {"notes", "Mole\nat 05:30"},
                  {"date", "2026-07-15T20:52:00Z"},
                  {"timezone", "Asia/Tokyo"},
                  {"localDate", "2026-07-16T05:52:00+09:00"},
                  {"latitude", -0.5},
                  {"longitude", -2.25},
                  {"images", 0},
                  {"started", false}}));

  // Wall time is the plan's own; what is not named stays.
  EXPECT_EQ(run({"plan", "edit", identifier, "--date", "2026-07-14 05:00", "--no-notes"}).output,
            "");
  plan = json::parse(run({"--json", "open", plan["link"]}).output);
  EXPECT_EQ(plan["localDate"], "2026-07-14T05:00:00+09:00");
  EXPECT_EQ(plan["notes"], nullptr);
  EXPECT_EQ(plan["started"], true);
  EXPECT_EQ(plan["latitude"], -0.5);

  EXPECT_EQ(run({"plan", "edit", uri, "--name", "", "--no-date", "--no-timezone"}).exitCode, 0);
  plan = json::parse(run({"plan", "show", uri, "--json"}).output);
  EXPECT_EQ(plan["name"], "");
  for (const char* key : {"date", "localDate", "timezone"}) EXPECT_EQ(plan[key], nullptr) << key;
  EXPECT_EQ(plan["uniqueIdentifier"], identifier);

  EXPECT_EQ(run({"plan", "remove", identifier.substr(0, 4)}).exitCode, 0);
  const auto gone = run({"plan", "show", identifier});
  EXPECT_EQ(gone.exitCode, 66);
  EXPECT_TRUE(isOneLine(gone.errors));
  const auto none = run({"plan", "list"});
  EXPECT_EQ(none.exitCode, 0);
  EXPECT_EQ(none.output + none.errors, "");
  EXPECT_EQ(run({"plan", "list", "--json"}).output, "{\n  \"plans\": []\n}\n");
}

TEST_F(PlanCommands, PlaceDatesInTheirZone) {
  struct Case {
    const char* text;
    const char* zone;
    const char* date;
  };
  // Instants by `date -u -d 'TZ="ZONE" TEXT'`; the clock stands at 2026-07-15T10:00:00Z.
  const Case cases[] = {
      {"2026-07-15T21:40:00.5Z", "Europe/Madrid", "2026-07-15T21:40:00.5Z"},
      {"2026-07-15T23:40+02:00", "Asia/Tokyo", "2026-07-15T21:40:00Z"},
      {"2026-07-15 23:40", "", "2026-07-15T21:40:00Z"},
      {"2026-07-15T23:40:30", "Asia/Kathmandu", "2026-07-15T17:55:30Z"},
      {"2026-12-01", "America/Los_Angeles", "2026-12-01T08:00:00Z"},
      {"2026-03-29 02:30", "Europe/Madrid", "2026-03-29T01:30:00Z"},
      {"2026-10-25 02:30", "Europe/Madrid", "2026-10-25T00:30:00Z"},
      {"now", "Europe/Madrid", "2026-07-15T10:00:00Z"},
      {"tomorrow 05:30", "Pacific/Auckland", "2026-07-15T17:30:00Z"},
      {"+3d 21:00", "Pacific/Honolulu", "2026-07-19T07:00:00Z"},
      {"yesterday 08:00", "Pacific/Honolulu", "2026-07-14T18:00:00Z"},
      {"-2w 12:00", "", "2026-07-01T10:00:00Z"},
      {"wednesday 12:00", "", "2026-07-15T10:00:00Z"},
      {"tue 12:00", "", "2026-07-21T10:00:00Z"},
      {"sunday", "Asia/Tokyo", "2026-07-18T15:00:00Z"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    std::vector<std::string> arguments = {"--date", c.text};
    if (*c.zone) arguments.insert(arguments.end(), {"--timezone", c.zone});
    const auto plan = json::parse(run({"plan", "show", add(arguments), "--json"}).output);
    EXPECT_EQ(plan["date"], c.date);
    EXPECT_EQ(plan["timezone"], *c.zone ? c.zone : "Europe/Madrid");
  }
}

TEST_F(PlanCommands, ListInColumnsThatLineUp) {
  const std::vector<std::string> ids = {
      add({"--name", "Undated"}),
      add({"--name", "富士山の夜明け", "--date", "2026-07-16 05:00", "--timezone", "Asia/Tokyo"}),
      add({"--name",
           "Blue\x1b]0;hour\x07 \xe2\x80\xae"
           "bridge\n",
           "--date", "2026-07-16 22:05"}),
      add({"--name", "Cafe\xcc\x81 🌉", "--date", "2026-07-17T00:30:00Z", "--timezone",
           "America/New_York", "--latitude", "-0.5", "--longitude", "2.25"}),
  };
  const auto shortId = [&](std::size_t i) { return ids[i].substr(0, 8) + "\n"; };
  // Widths by Python's unicodedata.east_asian_width: the widest name takes 22 cells.
  const std::string expected =
      "2026-07-16 05:00  富士山の夜明け          Asia/Tokyo        2026-07-15 22:00 here  " +
      shortId(1) +
      "2026-07-16 22:05  Blue\xef\xbf\xbd]0;hour\xef\xbf\xbd \xef\xbf\xbd"
      "bridge   Europe/Madrid                            " +
      shortId(2) +
      "2026-07-16 20:30  Cafe\xcc\x81 🌉                 America/New_York  2026-07-17 02:30 here  " +
      shortId(3) +
      "--                Undated                 Europe/Madrid                            " +
      shortId(0);
  struct Case {
    const char* name;
    std::vector<std::string> range;
    std::vector<std::string> names;
  };
  EXPECT_EQ(run({"plan", "list"}).output, expected);
  const Case cases[] = {
      {"a day counts to its end", {"--to", "2026-07-16"}, {"富士山の夜明け", "Blue"}},
      {"both ends count",
       {"--from", "2026-07-16T20:05:00Z", "--to", "2026-07-16T20:05:00Z"},
       {"Blue"}},
      {"from a moment on", {"--from", "2026-07-16 22:06"}, {"Cafe"}},
      {"days ahead", {"--from", "tomorrow", "--to", "+2d"}, {"Blue", "Cafe"}},
      {"nothing there", {"--from", "2027-01-01"}, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    std::vector<std::string> arguments = {"plan", "list", "--json"};
    arguments.insert(arguments.end(), c.range.begin(), c.range.end());
    const auto plans = json::parse(run(arguments).output)["plans"];
    ASSERT_EQ(plans.size(), c.names.size());
    for (std::size_t i = 0; i < c.names.size(); ++i) {
      EXPECT_THAT(plans[i]["name"].get<std::string>(), testing::StartsWith(c.names[i]));
    }
  }
  EXPECT_EQ(
      run({"plan", "list", "--plain"}, {{"LC_ALL", "ar_EG.UTF-8"}}).output,
      ids[1] + "\t2026-07-15T20:00:00Z\t2026-07-16T05:00:00+09:00\tAsia/Tokyo\t\t\t" +
          "富士山の夜明け\n" + ids[2] +
          "\t2026-07-16T20:05:00Z\t2026-07-16T22:05:00+02:00\tEurope/Madrid\t\t\tBlue\xef" +
          "\xbf\xbd]0;hour\xef\xbf\xbd \xef\xbf\xbd" + "bridge \n" + ids[3] +
          "\t2026-07-17T00:30:00Z\t2026-07-16T20:30:00-04:00\tAmerica/New_York\t-0.5\t2.25\t" +
          "Cafe\xcc\x81 🌉\n" + ids[0] + "\t\t\tEurope/Madrid\t\t\tUndated\n");
  EXPECT_EQ(run({"plan", "list", "--plain", "--json"}).exitCode, 64);
  // Not even JSON hands a terminal what it would act on.
  const std::string text = run({"plan", "show", ids[2], "--json"}).output;
  EXPECT_THAT(text, HasSubstr(R"(Blue\u001b]0;hour\u0007 \u202ebridge\n)"));
}

TEST_F(PlanCommands, ListARangeOfAnyNumberOfPlans) {
  add({"--name", "Undated"});
  // An hour apart from 2026-07-15 10:00 UTC on, as seconds since 2001.
  test::sqlite(store(),
               "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 299) "
               "INSERT INTO ZPLANNING (Z_ENT, Z_OPT, ZDATE) SELECT 4, 1, 805802400 + i * 3600 "
               "FROM n");
  for (const auto& [last, count] : std::map<std::string, std::size_t>{
           {"2026-07-19T13:00:00Z", 100}, {"2026-07-25T19:59:59Z", 250}, {"2027-01-01", 300}}) {
    const auto list = json::parse(run({"plan", "list", "--to", last, "--json"}).output);
    EXPECT_EQ(list["plans"].size(), count) << last;
  }
}

TEST_F(PlanCommands, ListADateThatNoCalendarShows) {
  add({"--name", "Far", "--timezone", "Asia/Tokyo"});
  test::sqlite(store(), "UPDATE ZPLANNING SET ZDATE = 1e15");
  const auto list = run({"plan", "list"});
  EXPECT_EQ(list.exitCode, 0) << list.errors;
  EXPECT_THAT(list.output, HasSubstr("Far"));
}

TEST_F(PlanCommands, ShowEverythingToAPerson) {
  const std::string identifier =
      add({"--name", "Sunrise", "--notes", "First\n\x1b[31mSecond", "--date", "2026-07-16 05:52",
           "--timezone", "Asia/Tokyo", "--latitude", "35.5193", "--longitude", "24.0168"});
  const std::string uri = json::parse(run({"plan", "show", identifier, "--json"}).output)["uri"];
  EXPECT_EQ(run({"plan", "show", identifier}).output,
            "Sunrise\n"
            "  Date       2026-07-16 05:52 (2026-07-15 22:52 here)\n"
            "  Zone       Asia/Tokyo\n"
            "  Place      35.51930, 24.01680\n"
            "  Notes      First\n"
            "             \xef\xbf\xbd[31mSecond\n"
            "  Pictures   0\n"
            "  Identifier " +
                identifier +
                "\n"
                "  URI        " +
                uri +
                "\n"
                "  Link       vantrel://plan?id=x-coredata:%2F%2F" +
                uri.substr(13, 36) + "%2FPlanning%2Fp1\n");
}

TEST_F(PlanCommands, NameAPlanByAnUnambiguousPrefix) {
  std::vector<std::string> ids;
  for (int i = 0; i < 3; ++i) ids.push_back(add({"--name", "Plan " + std::to_string(i)}));
  // Identifiers of one's own choice, as another program may have made them.
  const auto identify = [&](int key, const char* identifier) {
    return test::runProgram({"sqlite3", store().string(),
                             std::string("UPDATE ZPLANNING SET ZUNIQUEIDENTIFIER = '") +
                                 identifier + "' WHERE Z_PK = " + std::to_string(key)});
  };
  identify(1, "ABCD1111-0000-4000-8000-000000000001");
  identify(2, "ABCD2222-0000-4000-8000-000000000002");
  identify(3, "abc");
  struct Case {
    const char* text;
    int exitCode;
    const char* expected;  ///< The name, or a part of the message.
  };
  const Case cases[] = {
      {"ABCD1", 0, "Plan 0"},
      {"abcd2222-", 0, "Plan 1"},
      {"abc", 0, "Plan 2"},
      {"ABCD", 64, "more than one plan"},
      {"AB", 64, "too short"},
      {"ABCE", 66, "no such plan"},
      {"ABCD%", 66, "no such plan"},
      {"", 64, "PLAN"},
      {"x-coredata://E8AFD1EB-9427-4A64-ABDA-AA06F7B1092C/Planning/p1", 66, "no such plan"},
      {"x-coredata:///Planning/t1", 65, "names no plan"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const auto result = run({"plan", "show", c.text});
    EXPECT_EQ(result.exitCode, c.exitCode);
    EXPECT_THAT(c.exitCode == 0 ? result.output : result.errors, HasSubstr(c.expected));
  }
  const auto ambiguous = run({"plan", "remove", "abcd"}).errors;
  EXPECT_THAT(ambiguous, HasSubstr("\n  ABCD1111-0000-4000-8000-000000000001  --  Plan 0\n"));
  EXPECT_THAT(ambiguous, HasSubstr("\n  ABCD2222-0000-4000-8000-000000000002  --  Plan 1\n"));
  EXPECT_EQ(json::parse(run({"plan", "list", "--json"}).output)["plans"].size(), 3u);
}

TEST_F(PlanCommands, AddFromSeveralProcessesAtOnce) {
  constexpr int kProcesses = 6;
  constexpr int kPlans = 5;
  std::vector<std::thread> threads;
  for (int i = 0; i < kProcesses; ++i) {
    threads.emplace_back([&] {
      for (int k = 0; k < kPlans; ++k) add({"--name", "At once"});
    });
  }
  for (auto& thread : threads) thread.join();
  std::map<std::string, int> uris;
  const auto list = json::parse(run({"plan", "list", "--json"}).output);
  for (const auto& plan : list["plans"]) ++uris[plan["uri"]];
  EXPECT_EQ(uris.size(), static_cast<std::size_t>(kProcesses * kPlans));
}

}  // namespace
}  // namespace vantrel
