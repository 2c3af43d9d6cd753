#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "cli/CommandLineFixture.h"
#include "support/TestStore.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;
using StoreCommands = test::CommandLineTest;

TEST_F(StoreCommands, FillAStoreWithPlansInTheRightLight) {
  const std::string own = add({"--name", "plan_sample_bridge_name"});
  EXPECT_EQ(run({"store", "sample"}).output, "");
  // Neither twice nor in a second language; and what was there stays as it is.
  EXPECT_EQ(run({"store", "sample"}, {{"LANGUAGE", "de"}}).exitCode, 0);
  const auto kept = json::parse(run({"plan", "show", own, "--json"}).output);
  EXPECT_EQ(kept["name"], "plan_sample_bridge_name");
  EXPECT_EQ(kept["notes"], nullptr);
  run({"plan", "remove", own});
  const auto list = json::parse(run({"plan", "list", "--json"}).output);
  ASSERT_EQ(list["plans"].size(), 8u);
  for (const auto& plan : list["plans"]) EXPECT_EQ(plan["started"], false) << plan["name"];

  // Instants computed with ERFA: the sun's centre (eraEpv00, eraPnm06a, eraGst06a) stands 0.833, 5
  // or 18 degrees below the horizon at that place, rounded to five minutes with the plan's lead.
  struct Case {
    const char* name;
    const char* summer;
    const char* winter;
  };
  const Case cases[] = {
      {"Sunrise at the old harbour", "2026-07-17T06:20:00+03:00", "2026-12-22T07:30:00+02:00"},
      {"Blue hour from the bridge", "2026-07-19T20:50:00-04:00", "2026-12-24T17:00:00-05:00"},
      {"Milky Way over the lighthouse", "2026-07-16T23:45:00+02:00", "2026-12-21T20:00:00+01:00"},
      {"Golden hour on Table Mountain", "2026-07-25T17:15:00+02:00", "2026-12-30T19:15:00+02:00"},
      {"Perseids, first night", "2026-08-11T23:10:00-07:00", "2027-08-11T23:10:00-07:00"},
  };
  const std::map<std::string, std::string> winter = {{"VANTREL_NOW", "2026-12-20T10:00:00Z"}};
  EXPECT_EQ(run({"store", "sample"}, winter).exitCode, 0);
  const auto later = json::parse(run({"plan", "list", "--json", "--from", "now"}, winter).output);
  const auto dateOf = [](const json& plans, const std::string& name) {
    for (const auto& plan : plans) {
      if (plan["name"] == name) return plan["localDate"].get<std::string>();
    }
    return std::string();
  };
  for (const auto& c : cases) {
    EXPECT_EQ(dateOf(list["plans"], c.name), c.summer) << c.name;
    EXPECT_EQ(dateOf(later["plans"], c.name), c.winter) << c.name;
  }
}

void makeStore(const fs::path& path, const std::string& version) {
  test::OpenStore store(path, test::mainOptions(), test::mainModelOfVersion(version));
  store.insertPlan("Sunrise", 0);
  EXPECT_TRUE(store.context.save());
}

TEST_F(StoreCommands, TellWhatAStoreIsAndLeaveItAsItIs) {
  struct Case {
    const char* name;
    std::function<void(const fs::path&)> make;
    json expected;
  };
  const Case cases[] = {
      {"our own",
       [](const fs::path& path) { makeStore(path, "4"); },
       {{"model", "current"}, {"modelVersions", {"4"}}, {"plans", 1}, {"journal", "wal"}}},
      {"of an older version",
       [](const fs::path& path) { makeStore(path, "3"); },
       {{"model", "older"}, {"modelVersions", {"3"}}, {"plans", 1}, {"customPois", 0}}},
      {"of another program",
       [](const fs::path& path) {
         fs::copy_file(test::testData("stores/SampleModel_V2.sqlite"), path);
       },
       {{"model", "incompatible"}, {"plans", nullptr}}},
      {"of a newer program",
       [](const fs::path& path) {
         makeStore(path, "4");
         test::sqlite(path, "UPDATE Z_METADATA SET Z_VERSION = 2");
       },
       {{"model", "newer"}, {"plans", nullptr}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    fs::remove_all(container());
    fs::create_directories(container());
    c.make(store());
    const std::string before = test::readFile(store());
    const auto info = json::parse(run({"store", "info", "--json"}).output);
    for (const auto& [key, value] : c.expected.items()) EXPECT_EQ(info[key], value) << key;
    EXPECT_EQ(info["path"], store().string());
    EXPECT_EQ(info["uuid"], test::sqlite(store(), "SELECT Z_UUID FROM Z_METADATA"));
    EXPECT_EQ(info["size"], before.size());
    EXPECT_EQ(test::readFile(store()), before);
    EXPECT_THAT(run({"store", "info"}).output, HasSubstr(c.expected["model"].get<std::string>()));
  }
}

TEST_F(StoreCommands, OpenNothingButLinksToPlans) {
  const std::string identifier = add({"--name", "Sunrise"});
  const auto plan = json::parse(run({"plan", "show", identifier, "--json"}).output);
  const std::string link = plan["link"];
  const std::string uuid = plan["uri"].get<std::string>().substr(13, 36);
  const std::string start = "vantrel://plan?id=x-coredata:%2F%2F" + uuid;
  const std::string lowerCase = "vantrel://plan?id=x-coredata:%2f%2f" + uuid + "%2fPlanning%2fp1";
  for (const auto& good : {link, lowerCase}) {
    EXPECT_THAT(run({"open", good}).output, testing::StartsWith("Sunrise\n"));
  }
  const std::pair<std::string, int> cases[] = {
      {start + "%2FPlanning%2Fp99", 66},
      {"vantrel://plan?id=x-coredata:%2F%2F00000000-0000-4000-8000-000000000000%2FPlanning%2Fp1",
       66},
      {start + "%2FImage%2Fp1", 65},
      {"vantrel://plan?id=x-coredata:%2F%2F%2FPlanning%2Ft1", 65},
      {"https://plan?id=x-coredata:%2F%2F" + uuid + "%2FPlanning%2Fp1", 65},
      {"vantrel://camera?id=x-coredata:%2F%2F" + uuid + "%2FPlanning%2Fp1", 65},
      {"vantrel://plan?id=" + plan["uri"].get<std::string>(), 65},
      {link + "%2", 65},
      {link + "&x=1", 65},
      {start + "%2FPlanning%2Fp99999999999999999999", 65},
      {start + "%2FPlanning%2Fp1%00", 65},
      {start + "%2FPlanning%2Fp-1", 65},
      {link + "\x1b[2J", 65},
      {"", 65},
      {link + std::string(100000, '0'), 65},
  };
  for (const auto& [bad, exitCode] : cases) expectRefused({"open", bad}, exitCode);
}

}  // namespace
}  // namespace vantrel
