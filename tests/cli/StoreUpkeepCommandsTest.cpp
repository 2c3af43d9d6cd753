#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <random>

#include "cli/CommandLineFixture.h"
#include "support/TestStore.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using test::sqlite;

class StoreUpkeepCommands : public test::CommandLineTest {
 protected:
  /// Plans of which every second one is a duplicate; half of them have no identifier.
  void makeStore(int plans) const {
    fs::remove_all(container());
    fs::create_directories(container());
    ASSERT_TRUE(test::OpenStore(store()).store);
    EXPECT_EQ(sqlite(store(),
                     "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
                         std::to_string(plans) +
                         ") INSERT INTO ZPLANNING (Z_ENT, Z_OPT, ZDATE, ZNAME, ZUNIQUEIDENTIFIER)"
                         " SELECT 4, 1, i / 2 * 3, 'A plan', iif(i % 4 < 2, 'X', NULL) FROM n"),
              "");
    const auto pictures = container() / ".Vantrel_SUPPORT/_EXTERNAL_DATA";
    fs::create_directories(pictures);
    for (int i = 0; i < 20; ++i) {
      test::writeFile(pictures / std::to_string(i), std::string(100'000, 'p'));
    }
  }
  std::string count(const std::string& where) const {
    return sqlite(store(), "SELECT count(*) FROM ZPLANNING " + where);
  }
};

TEST_F(StoreUpkeepCommands, CountBeforeAndAfter) {
  makeStore(8);
  const auto answer = [&](std::vector<std::string> words) {
    words.insert(words.begin(), "store");
    words.push_back("--json");
    return json::parse(run(words).output);
  };
  const json none = {{"before", 0}, {"after", 0}};
  const auto dedupe = [&](bool isDry, int before, int after) {
    return json{{"dryRun", isDry},
                {"plans", {{"before", before}, {"after", after}}},
                {"customPois", none},
                {"customCameras", none}};
  };
  EXPECT_EQ(answer({"dedupe", "--dry-run"}), dedupe(true, 8, 5));
  EXPECT_EQ(count(""), "8");
  EXPECT_EQ(answer({"identifiers"}), json({{"withoutIdentifier", {{"before", 4}, {"after", 0}}}}));
  EXPECT_EQ(answer({"dedupe"}), dedupe(false, 8, 5));
  EXPECT_EQ(sqlite(store(), "SELECT group_concat(Z_PK) FROM ZPLANNING"), "1,2,4,6,8");
  EXPECT_EQ(run({"store", "dedupe"}).output,
            "  Plans      5 before, 5 after\n  Places     0 before, 0 after\n"
            "  Cameras    0 before, 0 after\n");
  // Where the store has no place for them, they stay without.
  sqlite(store(),
         "UPDATE Z_METADATA SET Z_PLIST = NULL;"
         "ALTER TABLE ZPLANNING DROP COLUMN ZUNIQUEIDENTIFIER");
  const auto refused = run({"store", "identifiers"});
  EXPECT_EQ(refused.exitCode, 74);
  EXPECT_EQ(refused.errors, "vantrel: store identifiers: 5 records could not be given one\n");
}

TEST_F(StoreUpkeepCommands, CopyAWholeStoreOrNone) {
  makeStore(8);
  const std::string copy = (container() / "Copy.sqlite").string();
  EXPECT_EQ(run({"store", "copy", copy, copy + "2"}).exitCode, 66);
  EXPECT_EQ(run({"store", "copy", store(), container() / "none/Copy.sqlite"}).exitCode, 73);
  EXPECT_EQ(run({"store", "copy", store(), ""}).exitCode, 64);
  EXPECT_EQ(run({"store", "copy", container(), copy}).exitCode, 65);
  EXPECT_THAT(run({"store", "copy", "-.5", copy}).errors, testing::HasSubstr("-.5: there is no"));
  // No file may grow beyond some blocks of 512 bytes, as on a disk that is full.
  const fs::path program = fs::read_symlink("/proc/self/exe").parent_path() / "vantrel";
  for (const char* blocks : {"8", "64", "100"}) {
    const auto full = test::runProgram({"sh", "-c", "trap '' XFSZ; ulimit -f $0; exec \"$@\"",
                                        blocks, program, "store", "copy", store(), copy});
    EXPECT_EQ(full.exitCode, 74) << blocks << ": " << full.errors;
    EXPECT_TRUE(test::isOneLine(full.errors)) << full.errors;
    EXPECT_EQ(std::distance(fs::directory_iterator(container()), {}), 2) << blocks;
  }
  EXPECT_EQ(run({"store", "copy", store(), copy}).exitCode, 0);
  const auto again = run({"store", "copy", store(), copy});
  EXPECT_EQ(again.exitCode, 73);
  EXPECT_EQ(again.errors, "vantrel: " + copy + ": there is a file already\n");
}

TEST_F(StoreUpkeepCommands, LeaveNothingHalfDoneWhenKilled) {
  const fs::path program = fs::read_symlink("/proc/self/exe").parent_path() / "vantrel";
  const fs::path copy = container() / "Copy.sqlite";
  std::mt19937 random(7);
  const auto runAndKill = [&](const char* signal, std::vector<std::string> words) {
    const auto delay = std::to_string(0.001 * static_cast<double>(1 + random() % 150));
    words.insert(words.begin(), {"timeout", "--foreground", "-s", signal, delay, program, "store"});
    return test::runProgram(words, {{"VANTREL_GROUP_CONTAINER", container()}}).exitCode;
  };
  int killed = 0;
  for (int round = 0; round < 8; ++round) {
    makeStore(4000);
    const std::string whole = count("");
    killed += runAndKill("KILL", {"copy", store(), copy}) != 0;
    if (fs::exists(copy)) {
      EXPECT_EQ(sqlite(copy, "PRAGMA integrity_check; SELECT count(*) FROM ZPLANNING"),
                "ok\n" + whole);
    } else {
      // What it left is no hindrance, and goes.
      EXPECT_EQ(run({"store", "copy", store(), copy}).exitCode, 0);
      EXPECT_EQ(std::distance(fs::directory_iterator(container()), {}), 4);
    }
    const auto pictures = container() / ".Copy_SUPPORT/_EXTERNAL_DATA";
    EXPECT_EQ(std::distance(fs::directory_iterator(pictures), {}), 20);
    killed += runAndKill("KILL", {"identifiers"}) != 0;
    EXPECT_THAT(count("WHERE ZUNIQUEIDENTIFIER IS NULL"), testing::AnyOf("2000", "0"));
    killed += runAndKill("INT", {"dedupe"}) != 0;
    EXPECT_THAT(count(""), testing::AnyOf("4000", "2001"));
    EXPECT_EQ(sqlite(store(), "PRAGMA integrity_check"), "ok");
  }
  EXPECT_GT(killed, 0);
}

}  // namespace
}  // namespace vantrel
