#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "cli/CommandLineFixture.h"
#include "platform/UserDefaults.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using test::isOneLine;

using UnitsCommandsTest = test::CommandLineTest;

TEST_F(UnitsCommandsTest, TellsLengthsInTheChosenSystem) {
  struct Case {
    std::vector<std::string> words;
    const char* metric;
    const char* imperial;
  };
  const Case cases[] = {
      {{"show"}, "Metric: mm cm m km\n", "Imperial: in (\") ft (') mi\n"},
      {{"best", "0.5"}, "cm\n", "in\n"},
      {{"best", "-.5"}, "mm\n", "in\n"},
      {{"best", "999"}, "m\n", "ft\n"},
      {{"best", "5280"}, "km\n", "mi\n"},
      {{"best", "5280", "--max", "m"}, "m\n", ""},
      {{"best", "0.001", "--min", "cm"}, "cm\n", ""},
      {{"best", "1", "--min", "ft", "--max", "mi"}, "", "ft\n"},
      {{"best", "1", "--min", "km", "--max", "m"}, "", ""},
      {{"best", "1", "--min", "MM"}, "", ""},
      {{"format", "999.96"}, "1000m\n", "1000'\n"},
      {{"format", "-1250", "--decimals", "2"}, "-1.25km\n", "-1250'\n"},
      {{"format", "1250", "--levels", "2"}, "1km 250m\n", "1250'\n"},
      {{"format", "5.2916665", "--levels", "2", "--decimals", "0"}, "5m 29cm\n", "5' 3 1/2\"\n"},
      {{"fraction", ".015625"}, "1/32\n", "1/32\n"},
      {{"fraction", "-2"}, "0\n", "0\n"},
  };
  for (const char* system : {"metric", "imperial"}) {
    expectQuiet({"units", "set", system});
    for (const auto& c : cases) {
      SCOPED_TRACE(std::string(system) + " " + testing::PrintToString(c.words));
      const std::string expected = system[0] == 'm' ? c.metric : c.imperial;
      auto words = c.words;
      words.insert(words.begin(), "units");
      const auto result = run(words);
      EXPECT_EQ(result.output, expected);
      EXPECT_EQ(result.exitCode, expected.empty() ? 64 : 0);
      EXPECT_EQ(isOneLine(result.errors), expected.empty()) << result.errors;
      words.push_back("--json");
      const json answer = json::parse(run(words).output, nullptr, false);
      ASSERT_EQ(answer.is_object(), !expected.empty());
      if (expected.empty()) continue;
      for (const char* key : {"name", "text", "fraction"}) {
        EXPECT_EQ(answer.contains(key) ? answer[key].get<std::string>() + "\n" : expected,
                  expected);
      }
      EXPECT_EQ(answer.value("system", system), system);
    }
  }
}

TEST_F(UnitsCommandsTest, RefusesWithOneLineThatSaysWhatIsAllowed) {
  struct Case {
    std::vector<std::string> words;
    const char* allowed;
  };
  const Case cases[] = {
      {{"units", "set", "nautical"}, "allowed are metric, imperial"},
      {{"units", "set", "1"}, "allowed are metric, imperial"},
      {{"units", "best", "1", "--max", "yd"}, "--max \"yd\": allowed are mm, cm, m, km"},
      {{"units", "best", "1", "--min", ""}, "--min \"\": allowed are mm, cm, m, km"},
      {{"units", "best", "1", "--min", "km", "--max", "m"}, "larger than --max \"m\""},
      {{"units", "best", "nan"}, "allowed are"},
      {{"units", "format", "-inf"}, "-inf: allowed are finite numbers"},
      {{"units", "format", "1e39"}, "allowed are"},
      {{"units", "format", "1", "--decimals", "-1"}, "allowed are whole numbers from 0 to 15"},
      {{"units", "format", "1", "--levels", "0"}, "allowed are whole numbers from 1 to 4"},
      {{"units", "fraction", "1/2"}, "allowed are"},
  };
  for (const auto& c : cases) expectRefused(c.words, 64, c.allowed);
  EXPECT_FALSE(fs::exists(container()));
}

TEST_F(UnitsCommandsTest, WritesOnlyAnotherChoice) {
  EXPECT_EQ(run({"units", "set", "metric"}).exitCode, 0);
  EXPECT_EQ(run({"units", "show"}).exitCode, 0);
  EXPECT_FALSE(fs::exists(settings()));
  EXPECT_EQ(run({"units", "set", "imperial"}).exitCode, 0);
  EXPECT_EQ(UserDefaults(settings()).objectForKey("global_units").asInteger(), 1);
  const auto written = fs::last_write_time(settings());
  EXPECT_EQ(run({"units", "set", "imperial"}).exitCode, 0);
  EXPECT_EQ(fs::last_write_time(settings()), written);
}

}  // namespace
}  // namespace vantrel
