#include "objectstore/SqliteStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <functional>

#include "platform/Bundle.h"
#include "support/TestStore.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using test::codeOf;
using test::mainOptions;
using test::OpenStore;
using test::readOnlyOptions;
using test::sqlite;
using testing::AnyOf;
using testing::HasSubstr;

class SqliteStoreTest : public test::StoreTest {
 protected:
  /// Forty plans of some length, so that the file has many pages.
  void saveFortyPlans() {
    OpenStore store(file_);
    for (int day = 0; day < 40; ++day) {
      store.insertPlan("plan" + std::to_string(day), day)->setNotes(std::string(300, 'n'));
    }
    ASSERT_TRUE(store.context.save());
  }
};

/// What Python reads of the file, compared with the main model's list of versions.
std::string description(const fs::path& file) {
  return test::pythonSays({test::testData("describe_store.py"), file,
                           *Bundle::mainBundle().urlForResource("Vantrel", "momd")});
}

std::optional<StoreErrorCode> openingError(const fs::path& file,
                                           const StoreOptions& options = mainOptions()) {
  return codeOf(OpenStore(file, options).store);
}

/// A program of its own on the file, in the middle of a change.
struct OtherWriter {
  OtherWriter(const fs::path& file, const char* sql) {
    EXPECT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK);
  }
  ~OtherWriter() { sqlite3_close(database); }
  sqlite3* database = nullptr;
};

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
                   "SELECT Z_UUID FROM Z_METADATA; SELECT count(*) FROM Z_MODELCACHE;"
                   "SELECT sql FROM sqlite_schema WHERE name IN ('ZMINE', 'ZPLANNING')"),
            uuid +
                "\n0\nCREATE TABLE ZPLANNING ( Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER, Z_OPT"
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
    const OtherWriter other(file_, "BEGIN IMMEDIATE");
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

TEST_F(SqliteStoreTest, LeavesTheJournalModeAndTheLogOfOthers) {
  saveFortyPlans();
  sqlite(file_, "PRAGMA journal_mode = DELETE");
  {
    OpenStore store(file_);
    store.insertPlan("more", 1);
    ASSERT_TRUE(store.context.save());
  }
  EXPECT_EQ(sqlite(file_, "PRAGMA journal_mode"), "delete");
  StoreOptions options = mainOptions();
  options.sqlitePragmas = {{"journal_mode", "WAL"}};
  EXPECT_EQ(openingError(file_, options), std::nullopt);
  EXPECT_EQ(sqlite(file_, "PRAGMA journal_mode"), "wal");
  options.sqlitePragmas = {{"journal_mode", "WAL; DROP TABLE ZPLANNING"}};
  EXPECT_EQ(openingError(file_, options), StoreErrorCode::kInvalidRequest);

  // A copy made while its program runs: the last plan is in the log alone.
  OpenStore writer(file_);
  writer.insertPlan("last", 1);
  ASSERT_TRUE(writer.context.save());
  const auto copy = directory_ / "Copy.sqlite";
  fs::copy_file(file_, copy);
  fs::copy_file(file_.string() + "-wal", copy.string() + "-wal");
  const std::string log = test::readFile(copy.string() + "-wal");
  ASSERT_FALSE(log.empty());
  for (const auto& opening : {readOnlyOptions(), mainOptions()}) {
    EXPECT_TRUE(OpenStore(copy, opening).planNamed("last"));
    EXPECT_EQ(test::readFile(copy), test::readFile(file_));
    EXPECT_EQ(test::readFile(copy.string() + "-wal"), log);
  }
}

// Closing any other handle of the file would let go of the locks that keep the log from being
// taken away.
TEST_F(SqliteStoreTest, LosesNothingWhenTheProcessReadsTheFileBesides) {
  OpenStore store(file_);
  store.insertPlan("first", 1);
  ASSERT_TRUE(store.context.save());
  EXPECT_EQ(OpenStore(file_, readOnlyOptions()).names(), "first");
  EXPECT_TRUE(PersistentStoreCoordinator::metadataForPersistentStore(file_));
  EXPECT_EQ(sqlite(file_, "UPDATE ZPLANNING SET ZNOTES = 'by another program'"), "");
  store.insertPlan("second", 2);
  ASSERT_TRUE(store.context.save());
  EXPECT_EQ(sqlite(file_, "SELECT ZNAME, ZNOTES FROM ZPLANNING"),
            "first|by another program\nsecond|");
}

TEST_F(SqliteStoreTest, ReadsNothingHalfWritten) {
  saveFortyPlans();
  sqlite(file_, "PRAGMA journal_mode = DELETE");
  const auto copy = directory_ / "Copy.sqlite";
  {
    // A cache of one page has the rest written before the end.
    const OtherWriter other(file_,
                            "PRAGMA cache_size = 1; BEGIN; UPDATE ZPLANNING SET ZNAME = 'half'");
    fs::copy_file(file_, copy);
    fs::copy_file(file_.string() + "-journal", copy.string() + "-journal");
  }
  EXPECT_EQ(openingError(copy, readOnlyOptions()), StoreErrorCode::kPermission);
  EXPECT_FALSE(OpenStore(copy).planNamed("half")) << "who may write takes it back";
  EXPECT_EQ(sqlite(copy, "PRAGMA integrity_check; SELECT count(*) FROM ZPLANNING"), "ok\n40");
}

/// Runs the function as a user without rights, in a process of its own, and gives what it gives.
std::string withoutPrivileges(const fs::path& result,
                              const std::function<std::string()>& function) {
  constexpr uid_t kNobody = 65534;
  const pid_t child = ::fork();
  if (child == 0) {
    std::ofstream file(result);
    if (::geteuid() == 0 && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)) ::_exit(1);
    file << function() << std::flush;
    ::_exit(file ? 0 : 1);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return status == 0 ? test::readFile(result) : "no result";
}

/// What opening, reading and saving give.
std::string useStore(const fs::path& file, const std::shared_ptr<ManagedObjectModel>& model) {
  const auto tell = [](const Error& error) -> std::string {
    return storeErrorCode(error) == StoreErrorCode::kPermission ? "permission"
                                                                : error.localizedDescription;
  };
  OpenStore store(file, mainOptions(), model);
  if (!store.store) return tell(store.store.error());
  const auto count = store.context.countForFetchRequest({.entityName = "Planning"});
  if (!count) return tell(count.error());
  store.insertPlan("new", 1);
  const auto saved = store.context.save();
  return std::to_string(*count) + " plans, " + (saved ? "saved" : tell(saved.error()));
}

TEST_F(SqliteStoreTest, ReadsAndWritesOnlyWhatItMay) {
  // Read beforehand: the build may lie where only its owner may look.
  const auto model = test::mainModel();
  const auto folder = directory_ / "folder";
  const auto file = folder / "Vantrel.sqlite";
  struct Case {
    const char* name;
    unsigned folder;
    std::optional<unsigned> file;
    const char* expected;
    bool hasLog = false;
  };
  const std::vector<Case> cases = {
      {"everything", 0777, 0777, "40 plans, saved"},
      {"a file only to be read", 0777, 0444, "40 plans, permission"},
      {"a folder only to be read", 0555, 0444, "40 plans, permission"},
      {"a folder only to be read, with a log", 0555, 0444, "permission", true},
      {"a file not to be read", 0777, 0, "permission"},
      {"a folder not to be entered", 0, 0444, "permission"},
      {"no file, a folder only to be read", 0555, {}, "permission"},
      {"no file", 0777, {}, "0 plans, saved"},
  };
  fs::permissions(directory_.path(), fs::perms(0777));
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    fs::create_directory(folder);
    if (row.file) {
      saveFortyPlans();
      fs::rename(file_, file);
      fs::permissions(file, fs::perms(*row.file));
    }
    if (row.hasLog) test::writeFile(file.string() + "-wal", std::string(4096, 'x'));
    fs::permissions(folder, fs::perms(row.folder));
    EXPECT_EQ(withoutPrivileges(directory_ / "result", [&] { return useStore(file, model); }),
              row.expected);
    fs::permissions(folder, fs::perms(0777));
    EXPECT_EQ(fs::exists(file.string() + "-wal"), row.hasLog);
    EXPECT_FALSE(fs::exists(file.string() + "-shm"));
    fs::remove_all(folder);
  }
}

}  // namespace
}  // namespace vantrel
