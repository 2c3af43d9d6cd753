#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "cli/CommandLineFixture.h"

namespace vantrel {
namespace {

using nlohmann::json;
using TodayCommand = test::CommandLineTest;

/// ICU 72 puts a narrow no-break space before AM and PM in American English.
constexpr const char* kNarrow = "\xe2\x80\xaf";

class TodayWithPlans : public TodayCommand {
 protected:
  void SetUp() override {
    add({"--name", "Over", "--date", "2026-07-14 23:59"});
    add({"--name", "Mil\x1bky Way", "--date", "2026-07-15 00:30"});
    add({"--name", "Sunrise", "--date", "2026-07-16 06:20", "--timezone", "Europe/Athens"});
    add({"--date", "2026-07-20 02:50", "--timezone", "Asia/Tokyo"});
    add({"--name", "Fourth", "--date", "2026-07-22 12:00"});
    add({"--name", "Fifth", "--date", "2026-07-23 12:00"});
    add({"--name", "Sixth", "--date", "2026-07-24 12:00"});
  }
};

TEST_F(TodayWithPlans, ReadsLikeTheCard) {
  const auto am = [](const char* time) { return std::string(time) + kNarrow + "AM"; };
  const auto pm = [](const char* time) { return std::string(time) + kNarrow + "PM"; };
  const std::string compact = "Mil\xef\xbf\xbdky Way\n  7/15/26 " + am("12:30") +
                              "\n\nSunrise\n  7/16/26 " + am("6:20") + "  Europe/Athens, " +
                              am("5:20") + " here\n";
  const std::string expanded =
      compact + "\n--\n  7/20/26 " + am("2:50") + "  Asia/Tokyo, 7/19/26 " + pm("7:50") +
      " here\n\nFourth\n  7/22/26 " + pm("12:00") + "\n\nFifth\n  7/23/26 " + pm("12:00") + "\n";
  EXPECT_EQ(run({"today"}).output, compact);
  EXPECT_EQ(run({"today", "--expanded"}).output, expanded);
  // Before the system knew two modes, the widget was always expanded.
  EXPECT_EQ(run({"today"}, {{"VANTREL_SYSTEM_VERSION", "9.3"}}).output, expanded);
  EXPECT_THAT(
      run({"today", "--expanded"}, {{"LC_ALL", "de_DE.UTF-8"}, {"TZ", "Asia/Tokyo"}}).output,
      testing::HasSubstr("  16.07.26 06:20  Europe/Athens, 12:20 here\n"));
}

TEST_F(TodayWithPlans, TellsProgramsTheSame) {
  const auto today = json::parse(run({"today", "--json"}).output);
  EXPECT_EQ(today["mode"], "compact");
  EXPECT_EQ(today["message"], nullptr);
  ASSERT_EQ(today["plans"].size(), 2u);
  auto sunrise = today["plans"][1];
  EXPECT_EQ(sunrise["row"], 1);
  EXPECT_EQ(sunrise["title"], "Sunrise");
  EXPECT_EQ(sunrise["dateText"], std::string("7/16/26 6:20") + kNarrow + "AM");
  for (const char* key : {"row", "title", "dateText"}) sunrise.erase(key);
  EXPECT_EQ(sunrise, json::parse(run({"open", sunrise["link"], "--json"}).output));
  EXPECT_EQ(today["plans"][0]["started"], true);
  EXPECT_EQ(sunrise["started"], false);

  const auto expanded = json::parse(run({"today", "--expanded", "--json"}).output);
  EXPECT_EQ(expanded["mode"], "expanded");
  ASSERT_EQ(expanded["plans"].size(), 5u);
  EXPECT_EQ(expanded["plans"][2]["name"], nullptr);
  EXPECT_EQ(expanded["plans"][2]["title"], "");
}

TEST_F(TodayCommand, SaysInTheUsersLanguageThatNothingIsPlanned) {
  add({"--name", "Over", "--date", "2026-07-14 23:59"});
  add({"--name", "Undated"});
  EXPECT_EQ(run({"today"}).output, "No plans scheduled\n");
  EXPECT_EQ(run({"today"}, {{"LANGUAGE", "de"}}).output, "Keine Pläne vorgesehen\n");
  EXPECT_EQ(run({"today", "--json"}).output,
            "{\n  \"plans\": [],\n  \"message\": \"No plans scheduled\",\n"
            "  \"mode\": \"compact\"\n}\n");
}

}  // namespace
}  // namespace vantrel
