#include "objectstore/sqlite/SqliteStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>

#include "platform/system/Bundle.h"
#include "support/TestStore.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using test::codeOf;
using test::mainOptions;
using test::openingError;
using test::OpenStore;
using test::readOnlyOptions;
using test::sqlite;
using testing::AnyOf;
using testing::HasSubstr;

class SqliteStoreTest : public test::StoreTest {};

/// What Python reads of the file, compared with the main model's list of versions.
std::string description(const fs::path& file) {
  return test::pythonSays({test::testData("describe_store.py"), file,
                           *Bundle::mainBundle().urlForResource("Vantrel", "momd")});
}

// The tables are those of a store that the phone wrote for the same entities; sqlite3 and Python
// are the witnesses.
TEST_F(SqliteStoreTest, GivesANewStoreThePhonesLayout) {
  ASSERT_EQ(openingError(file_), std::nullopt);
  EXPECT_EQ(sqlite(file_, "SELECT sql FROM sqlite_schema") + "\n" + description(file_),
            test::readFile(test::testData("main_store.txt")));
  struct stat status = {};
  ASSERT_EQ(::stat(file_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
  EXPECT_EQ(sqlite(file_,
                   "EXPLAIN QUERY PLAN SELECT * FROM ZPLANNING WHERE ZDATE >= 1"
                   " ORDER BY ZDATE, Z_PK LIMIT 5"),
            "QUERY PLAN\n`--SEARCH ZPLANNING USING INDEX Z_Planning_date (ZDATE>?)");
  EXPECT_EQ(std::distance(fs::directory_iterator(directory_.path()), {}), 1) << "only the store";
}

TEST_F(SqliteStoreTest, MigratesAStoreOfAnOlderVersionInPlace) {
  {
    OpenStore store(file_, mainOptions(), test::mainModelOfVersion("3"));
    const auto plan = store.insertPlan("old", 1);
    store.context.insertNewObject("Image")->setRelatedObject(plan, "planning");
    ASSERT_TRUE(store.context.save());
  }
  sqlite(file_, "INSERT INTO Z_MODELCACHE VALUES (x'01'); CREATE TABLE ZMINE (Z_PK INTEGER)");
  const char* addKey = R"(
import plistlib, sqlite3, sys
store = sqlite3.connect(sys.argv[1])
metadata = plistlib.loads(store.execute("SELECT Z_PLIST FROM Z_METADATA").fetchone()[0])
metadata["com.example.key"] = {"kept": [1, 2.5, b"x"]}
content = plistlib.dumps(metadata, fmt=plistlib.FMT_BINARY)
store.execute("UPDATE Z_METADATA SET Z_PLIST = ?", [content])
store.commit())";
  ASSERT_EQ(test::pythonSays({"-c", addKey, file_}), "");
  const std::string uuid = sqlite(file_, "SELECT Z_UUID FROM Z_METADATA");
  const std::string before = test::readFile(file_);

  // Without leave to migrate, and for whoever may only read, it stays as it is.
  EXPECT_EQ(openingError(file_, {}), StoreErrorCode::kIncompatible);
  EXPECT_EQ(OpenStore(file_, readOnlyOptions()).names(), "old");
  EXPECT_EQ(test::readFile(file_), before);

  {
    OpenStore store(file_);
    ASSERT_TRUE(store.store) << store.store.error().localizedDescription;
    EXPECT_FALSE((*store.store)->isForeign());
    const auto plan = store.planNamed("old");
    ASSERT_TRUE(plan);
    EXPECT_EQ(plan->uniqueIdentifier(), std::nullopt) << "upkeep gives it one later";
    EXPECT_EQ(plan->imageCount(), 1U);
    EXPECT_EQ(store.insertPlan("new", 2)->uniqueIdentifier()->size(), 36U);
    ASSERT_TRUE(store.context.save());
  }
  EXPECT_EQ(sqlite(file_,
                   "SELECT Z_UUID FROM Z_METADATA; SELECT count(*) FROM Z_MODELCACHE WHERE "
                   "length(Z_CONTENT) > 1;"
                   "SELECT sql FROM sqlite_schema WHERE name IN ('ZMINE', 'ZPLANNING')"),
            uuid +
                "\n1\nCREATE TABLE ZPLANNING ( Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER, Z_OPT"
                " INTEGER, ZDATE TIMESTAMP, ZLATITUDE FLOAT, ZLONGITUDE FLOAT, ZNAME VARCHAR,"
                " ZNOTES VARCHAR, ZTIMEZONE VARCHAR , ZUNIQUEIDENTIFIER VARCHAR)\n"
                "CREATE TABLE ZMINE (Z_PK INTEGER)");
  for (const char* line : {"integrity_check ok", "digest True\nchecksum True", "model True True",
                           "com.example.key {'kept': [1, 2.5, b'x']}"}) {
    EXPECT_THAT(description(file_), HasSubstr(line));
  }
}

TEST_F(SqliteStoreTest, RefusesWhatIsNoStoreAndLeavesItAlone) {
  struct Case {
    const char* name;
    std::function<void()> make;
    StoreOptions options;
    StoreErrorCode error;
  };
  const auto write = [&](const std::string& content) {
    return [&, content] { test::writeFile(file_, content); };
  };
  const auto database = [&] { sqlite(file_, "CREATE TABLE t (x)"); };
  const auto folder = [&] { fs::create_directory(file_); };
  const auto pipe = [&] { ::mkfifo(file_.c_str(), 0600); };
  const auto link = [&] { fs::create_symlink("nowhere", file_); };
  using Code = StoreErrorCode;
  const std::vector<Case> cases = {
      {"nothing there, only to be read", [] {}, readOnlyOptions(), Code::kMissing},
      {"a text", write(std::string(5000, 'x')), mainOptions(), Code::kNotAStore},
      {"a few bytes", write("SQLite format 3"), mainOptions(), Code::kNotAStore},
      {"an empty file, only to be read", write(""), readOnlyOptions(), Code::kNotAStore},
      {"another database", database, mainOptions(), Code::kNotAStore},
      {"a folder", folder, mainOptions(), Code::kCannotCreate},
      {"a pipe", pipe, mainOptions(), Code::kNotAStore},
      {"a link to nowhere", link, mainOptions(), Code::kMissing},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    row.make();
    const bool isFile = fs::is_regular_file(file_);
    const std::string before = isFile ? test::readFile(file_) : "";
    const OpenStore store(file_, row.options);
    ASSERT_EQ(codeOf(store.store), row.error);
    EXPECT_EQ(store.coordinator->storeFailure().localizedDescription,
              store.store.error().localizedDescription);
    EXPECT_EQ(isFile ? test::readFile(file_) : "", before);
    fs::remove(file_);
    EXPECT_TRUE(fs::is_empty(directory_.path())) << "nothing is left beside it";
  }
  test::writeFile(directory_ / "file", "");
  EXPECT_EQ(openingError(directory_ / "no/such/folder/Vantrel.sqlite"), Code::kCannotCreate);
  EXPECT_EQ(openingError(directory_ / "file/Vantrel.sqlite"), Code::kCannotCreate);
  // What a program left that was stopped while it made the file.
  EXPECT_EQ(openingError(directory_ / "file"), std::nullopt);
  // SQLite would write these into a new store.
  for (const char* suffix : {"-wal", "-journal"}) {
    const auto log = file_.string() + suffix;
    test::writeFile(log, "pages");
    EXPECT_EQ(openingError(file_), Code::kCannotCreate);
    EXPECT_EQ(test::readFile(log), "pages");
    fs::remove(log);
  }
}

// Every page in turn, and every length: an error or what can still be read, never more.
TEST_F(SqliteStoreTest, SurvivesDamage) {
  saveFortyPlans();
  const std::string whole = test::readFile(file_);
  constexpr std::size_t kPage = 4096;
  ASSERT_GT(whole.size(), 10 * kPage);
  std::size_t refused = 0;
  std::size_t tried = 0;
  const auto tryDamaged = [&](const std::string& damaged) {
    ++tried;
    const auto copy = directory_ / "Copy.sqlite";
    test::writeFile(copy, damaged);
    {
      OpenStore store(copy);
      const auto plans = store.context.executeFetchRequest(
          {.entityName = "Planning", .sortDescriptors = {{"date", true}}});
      if (plans) {
        for (const auto& plan : *plans) plan->countOfRelatedObjects("images");
      } else {
        ++refused;
        EXPECT_THAT(codeOf(plans), AnyOf(StoreErrorCode::kDamaged, StoreErrorCode::kNotAStore));
      }
    }
    EXPECT_EQ(test::readFile(copy), damaged) << "reading repairs nothing";
  };
  for (std::size_t page = 0; page * kPage < whole.size(); ++page) {
    SCOPED_TRACE("page " + std::to_string(page));
    for (const char filler : {'\0', '\xff', '\x0d'}) {
      std::string damaged = whole;
      // The first bytes say that it is a database at all.
      const std::size_t start = page == 0 ? 100 : page * kPage;
      std::fill_n(damaged.begin() + static_cast<std::ptrdiff_t>(start), kPage / 2, filler);
      tryDamaged(damaged);
    }
    if (page > 0) tryDamaged(whole.substr(0, page * kPage));
    tryDamaged(whole.substr(0, page * kPage + kPage / 2));
  }
  EXPECT_GT(refused, tried / 2);
}

TEST_F(SqliteStoreTest, SavesAllOrNothing) {
  saveFortyPlans();
  const std::string pages = sqlite(file_, "PRAGMA page_count");
  StoreOptions options = mainOptions();
  options.sqlitePragmas = {{"max_page_count", pages}, {"busy_timeout", "10"}};
  OpenStore store(file_, options);
  const auto plan = store.planNamed("plan7");
  plan->setName("renamed");
  for (int copy = 0; copy < 100; ++copy) {
    store.insertPlan("new", copy)->setNotes(std::string(1000, 'x'));
  }
  EXPECT_EQ(codeOf(store.context.save()), StoreErrorCode::kDiskFull);
  EXPECT_TRUE(store.context.hasChanges());
  EXPECT_EQ(plan->name(), "renamed");
  const std::string state =
      "SELECT count(*), max(ZNAME) FROM ZPLANNING; SELECT Z_MAX FROM Z_PRIMARYKEY WHERE Z_ENT = 4;"
      " PRAGMA integrity_check";
  EXPECT_EQ(sqlite(file_, state), "40|plan9\n40\nok");

  store.context.reset();
  store.planNamed("plan7")->setName("renamed");
  {
    const test::OtherWriter other(file_, "BEGIN IMMEDIATE");
    EXPECT_EQ(codeOf(store.context.save()), StoreErrorCode::kLocked);
    EXPECT_EQ(store.context.countForFetchRequest({.entityName = "Planning"}), 40U)
        << "reading goes on meanwhile";
  }
  EXPECT_TRUE(store.context.save()) << "later it works";
  EXPECT_EQ(sqlite(file_, state), "40|renamed\n40\nok");

  // Where a careless writer left the count behind, keys that are taken are not given again.
  sqlite(file_, "UPDATE Z_PRIMARYKEY SET Z_MAX = 3 WHERE Z_ENT = 4");
  store.context.deleteObject(store.planNamed("renamed"));
  store.insertPlan("after", 1);
  EXPECT_TRUE(store.context.save());
  EXPECT_EQ(sqlite(file_, state), "40|plan9\n41\nok");

  // Behind the largest key SQLite would go on with the smallest, which nothing can name.
  sqlite(file_, "UPDATE Z_PRIMARYKEY SET Z_MAX = 9223372036854775807 WHERE Z_ENT = 4");
  store.insertPlan("more", 1);
  EXPECT_FALSE(store.context.save());
  EXPECT_EQ(sqlite(file_, state), "40|plan9\n9223372036854775807\nok");
}

}  // namespace
}  // namespace vantrel
