#include "objectstore/SqliteStore.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <functional>

#include "objectstore/StoreError.h"
#include "platform/Bundle.h"
#include "support/Guards.h"
#include "support/TestStore.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using test::OpenStore;
using test::sqlite;
using testing::HasSubstr;

class SqliteStoreTest : public testing::Test {
 protected:
  const test::TemporaryDirectory directory_;
  const fs::path file_ = directory_ / "Vantrel.sqlite";
};

std::string describe(const fs::path& file, const fs::path& momd = {}) {
  std::vector<std::string> arguments = {"python3", test::testData("describe_store.py"), file};
  if (!momd.empty()) arguments.push_back(momd);
  const auto result = test::runProgram(arguments);
  return result.output + result.errors;
}

fs::path mainMomd() {
  return *Bundle::mainBundle().urlForResource("Vantrel", "momd");
}

std::optional<StoreErrorCode> openingError(const fs::path& file,
                                           const StoreOptions& options = test::mainOptions()) {
  const OpenStore store(file, options);
  return store.store ? std::nullopt : storeErrorCode(store.store.error());
}

// The tables are those of a store that the phone wrote for the same entities; sqlite3 and Python
// are the witnesses.
TEST_F(SqliteStoreTest, GivesANewStoreThePhonesLayout) {
  ASSERT_EQ(openingError(file_), std::nullopt);
  EXPECT_EQ(sqlite(file_, "SELECT sql FROM sqlite_schema"),
            "CREATE TABLE ZCUSTOMCAMERA ( Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER, Z_OPT INTEGER, "
            "ZISFILM INTEGER, ZAPERTURE FLOAT, ZCOC FLOAT, ZFOCALLENGTH FLOAT, ZMEGAPIXELS FLOAT, "
            "ZSENSORHEIGHT FLOAT, ZSENSORWIDTH FLOAT, ZMODEL VARCHAR, ZUNIQUEIDENTIFIER VARCHAR )\n"
            "CREATE TABLE ZCUSTOMPOI ( Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER, Z_OPT INTEGER, "
            "ZLATITUDE FLOAT, ZLONGITUDE FLOAT, ZNAME VARCHAR, ZUNIQUEIDENTIFIER VARCHAR )\n"
            "CREATE TABLE ZIMAGE ( Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER, Z_OPT INTEGER, "
            "ZCUSTOMPOI INTEGER, ZPLANNING INTEGER, ZUNIQUEIDENTIFIER VARCHAR, ZDATA BLOB )\n"
            "CREATE TABLE ZPLANNING ( Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER, Z_OPT INTEGER, "
            "ZDATE TIMESTAMP, ZLATITUDE FLOAT, ZLONGITUDE FLOAT, ZNAME VARCHAR, ZNOTES VARCHAR, "
            "ZTIMEZONE VARCHAR, ZUNIQUEIDENTIFIER VARCHAR )\n"
            "CREATE INDEX ZIMAGE_ZCUSTOMPOI_INDEX ON ZIMAGE (ZCUSTOMPOI)\n"
            "CREATE INDEX ZIMAGE_ZPLANNING_INDEX ON ZIMAGE (ZPLANNING)\n"
            "CREATE INDEX Z_Planning_date ON ZPLANNING (ZDATE COLLATE BINARY ASC)\n"
            "CREATE TABLE Z_PRIMARYKEY (Z_ENT INTEGER PRIMARY KEY, Z_NAME VARCHAR, Z_SUPER INTEGER,"
            " Z_MAX INTEGER)\n"
            "CREATE TABLE Z_METADATA (Z_VERSION INTEGER PRIMARY KEY, Z_UUID VARCHAR(255),"
            " Z_PLIST BLOB)\n"
            "CREATE TABLE Z_MODELCACHE (Z_CONTENT BLOB)");
  EXPECT_EQ(describe(file_, mainMomd()),
            "page_size 4096\nauto_vacuum 2\nencoding UTF-8\njournal_mode wal\nuser_version 0\n"
            "application_id 0\nintegrity_check ok\n"
            "entity 1 CustomCamera 0 0\nentity 2 CustomPoi 0 0\nentity 3 Image 0 0\n"
            "entity 4 Planning 0 0\n"
            "metadata 1 36 True bplist00\n"
            "hashes CustomCamera:32 CustomPoi:32 Image:32 Planning:32\ndigest True\nchecksum True\n"
            "NSPersistenceFrameworkVersion 1344\nNSStoreModelVersionHashesVersion 3\n"
            "NSStoreModelVersionIdentifiers ['4']\nNSStoreType 'SQLite'\n_NSAutoVacuumLevel '2'\n"
            "model True True\n");
  struct stat status = {};
  ASSERT_EQ(::stat(file_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
  EXPECT_EQ(sqlite(file_,
                   "EXPLAIN QUERY PLAN SELECT * FROM ZPLANNING WHERE ZDATE >= 1"
                   " ORDER BY ZDATE, Z_PK LIMIT 5"),
            "QUERY PLAN\n`--SEARCH ZPLANNING USING INDEX Z_Planning_date (ZDATE>?)");
  std::vector<std::string> left;
  for (const auto& entry : fs::directory_iterator(directory_.path())) {
    left.push_back(entry.path().filename());
  }
  EXPECT_THAT(left, testing::ElementsAre("Vantrel.sqlite")) << "nothing is left beside it";
}

TEST_F(SqliteStoreTest, MigratesAStoreOfAnOlderVersionInPlace) {
  const auto older = test::mainModelOfVersion("3");
  {
    OpenStore store(file_, test::mainOptions(), older);
    ASSERT_TRUE(store.store) << store.store.error().localizedDescription;
    const auto plan = store.insertPlan("old", 1);
    store.context.insertNewObject("Image")->setRelatedObject(plan, "planning");
    ASSERT_TRUE(store.context.save());
  }
  ASSERT_EQ(test::runProgram({"python3", "-c",
                              "import sqlite3, plistlib, sys\n"
                              "c = sqlite3.connect(sys.argv[1])\n"
                              "m = plistlib.loads(c.execute('SELECT Z_PLIST FROM Z_METADATA')"
                              ".fetchone()[0])\n"
                              "m['com.example.key'] = {'kept': [1, 2.5, b'x']}\n"
                              "c.execute('UPDATE Z_METADATA SET Z_PLIST = ?', [plistlib.dumps(m,"
                              " fmt=plistlib.FMT_BINARY)])\n"
                              "c.execute('INSERT INTO Z_MODELCACHE VALUES (?)', [b'older'])\n"
                              "c.execute('CREATE TABLE ZMINE (Z_PK INTEGER)')\n"
                              "c.commit()",
                              file_})
                .errors,
            "");
  const std::string uuid = sqlite(file_, "SELECT Z_UUID FROM Z_METADATA");
  const std::string before = test::readFile(file_);

  // Without leave to migrate, and for whoever may only read, it stays as it is.
  EXPECT_EQ(openingError(file_, {}), StoreErrorCode::kIncompatible);
  StoreOptions readOnly = test::mainOptions();
  readOnly.readOnly = true;
  EXPECT_EQ(OpenStore(file_, readOnly).names(), "old");
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
  EXPECT_EQ(sqlite(file_, "SELECT Z_UUID FROM Z_METADATA"), uuid);
  EXPECT_EQ(sqlite(file_, "SELECT count(*) FROM Z_MODELCACHE"), "0");
  EXPECT_EQ(sqlite(file_, "SELECT name FROM sqlite_schema WHERE name = 'ZMINE'"), "ZMINE");
  EXPECT_EQ(sqlite(file_, "SELECT sql FROM sqlite_schema WHERE name = 'ZPLANNING'"),
            "CREATE TABLE ZPLANNING ( Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER, Z_OPT INTEGER,"
            " ZDATE TIMESTAMP, ZLATITUDE FLOAT, ZLONGITUDE FLOAT, ZNAME VARCHAR, ZNOTES VARCHAR,"
            " ZTIMEZONE VARCHAR , ZUNIQUEIDENTIFIER VARCHAR)");
  const std::string description = describe(file_, mainMomd());
  EXPECT_THAT(description, HasSubstr("integrity_check ok"));
  EXPECT_THAT(description, HasSubstr("digest True\nchecksum True"));
  EXPECT_THAT(description, HasSubstr("com.example.key {'kept': [1, 2.5, b'x']}"));
  EXPECT_THAT(description, HasSubstr("model True True"));
}

void makeStoreWithPlans(const fs::path& file) {
  OpenStore store(file);
  for (int day = 0; day < 40; ++day) {
    store.insertPlan("plan" + std::to_string(day), day)->setNotes(std::string(300, 'n'));
  }
  ASSERT_TRUE(store.context.save());
}

TEST_F(SqliteStoreTest, RefusesWhatIsNoStoreAndLeavesItAlone) {
  StoreOptions readOnly = test::mainOptions();
  readOnly.readOnly = true;
  struct Case {
    const char* name;
    std::function<void()> make;
    StoreOptions options;
    StoreErrorCode error;
  };
  const auto write = [&](const std::string& content) {
    return [&, content] { test::writeFile(file_, content); };
  };
  const auto options = test::mainOptions();
  const std::vector<Case> cases = {
      {"nothing there, only to be read", [] {}, readOnly, StoreErrorCode::kMissing},
      {"a text", write(std::string(5000, 'x')), options, StoreErrorCode::kNotAStore},
      {"a few bytes", write("SQLite format 3"), options, StoreErrorCode::kNotAStore},
      {"an empty file, only to be read", write(""), readOnly, StoreErrorCode::kNotAStore},
      {"another database", [&] { sqlite(file_, "CREATE TABLE t (x)"); }, options,
       StoreErrorCode::kNotAStore},
      {"a folder", [&] { fs::create_directory(file_); }, options, StoreErrorCode::kCannotCreate},
      {"a pipe", [&] { ::mkfifo(file_.c_str(), 0600); }, options, StoreErrorCode::kNotAStore},
      {"a link to nowhere", [&] { fs::create_symlink("nowhere", file_); }, options,
       StoreErrorCode::kMissing},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    row.make();
    const bool isFile = fs::is_regular_file(file_);
    const std::string before = isFile ? test::readFile(file_) : "";
    const OpenStore store(file_, row.options);
    ASSERT_FALSE(store.store);
    EXPECT_EQ(storeErrorCode(store.store.error()), row.error)
        << store.store.error().localizedDescription;
    EXPECT_EQ(store.coordinator->storeFailure().localizedDescription,
              store.store.error().localizedDescription);
    if (isFile) {
      EXPECT_EQ(test::readFile(file_), before);
    }
    fs::remove(file_);
    EXPECT_TRUE(fs::is_empty(directory_.path())) << "nothing is left beside it";
  }
  EXPECT_EQ(openingError(directory_ / "no/such/folder/Vantrel.sqlite"),
            StoreErrorCode::kCannotCreate);
  test::writeFile(directory_ / "file", "");
  EXPECT_EQ(openingError(directory_ / "file/Vantrel.sqlite"), StoreErrorCode::kCannotCreate);
  // What a program left that was stopped while it made the file.
  EXPECT_EQ(openingError(directory_ / "file"), std::nullopt);
  // SQLite would write these into a new store.
  for (const char* suffix : {"-wal", "-journal"}) {
    const auto log = directory_ / ("Lost.sqlite" + std::string(suffix));
    test::writeFile(log, "pages");
    EXPECT_EQ(openingError(directory_ / "Lost.sqlite"), StoreErrorCode::kCannotCreate);
    EXPECT_EQ(test::readFile(log), "pages");
    fs::remove(log);
  }
}

// Every page in turn, and every length: an error or what can still be read, never more.
TEST_F(SqliteStoreTest, SurvivesDamage) {
  makeStoreWithPlans(file_);
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
      if (!plans) {
        ++refused;
        const auto code = storeErrorCode(plans.error());
        EXPECT_TRUE(code == StoreErrorCode::kDamaged || code == StoreErrorCode::kNotAStore)
            << plans.error().localizedDescription << " " << plans.error().userInfo.at("reason");
      } else {
        for (const auto& plan : *plans) plan->countOfRelatedObjects("images");
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
  makeStoreWithPlans(file_);
  const std::string pages = sqlite(file_, "PRAGMA page_count");
  StoreOptions options = test::mainOptions();
  options.sqlitePragmas = {{"max_page_count", pages}, {"busy_timeout", "10"}};
  OpenStore store(file_, options);
  const auto plan = store.planNamed("plan7");
  plan->setName("renamed");
  for (int copy = 0; copy < 100; ++copy) {
    store.insertPlan("new", copy)->setNotes(std::string(1000, 'x'));
  }
  const auto full = store.context.save();
  ASSERT_FALSE(full);
  EXPECT_EQ(storeErrorCode(full.error()), StoreErrorCode::kDiskFull);
  EXPECT_TRUE(store.context.hasChanges());
  EXPECT_EQ(plan->name(), "renamed");
  const std::string state =
      "SELECT count(*), max(ZNAME) FROM ZPLANNING; SELECT Z_MAX FROM Z_PRIMARYKEY WHERE Z_ENT = 4;"
      " PRAGMA integrity_check";
  EXPECT_EQ(sqlite(file_, state), "40|plan9\n40\nok");

  store.context.reset();
  store.planNamed("plan7")->setName("renamed");
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(file_.c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
  const auto locked = store.context.save();
  ASSERT_FALSE(locked);
  EXPECT_EQ(storeErrorCode(locked.error()), StoreErrorCode::kLocked);
  EXPECT_EQ(store.context.countForFetchRequest({.entityName = "Planning"}), 40U)
      << "reading goes on meanwhile";
  sqlite3_close(other);
  EXPECT_TRUE(store.context.save()) << "later it works";
  EXPECT_EQ(sqlite(file_, state), "40|renamed\n40\nok");

  // Behind the largest key SQLite would go on with the smallest, which nothing can name.
  sqlite(file_, "UPDATE Z_PRIMARYKEY SET Z_MAX = 9223372036854775807 WHERE Z_ENT = 4");
  store.insertPlan("more", 1);
  EXPECT_FALSE(store.context.save());
  EXPECT_EQ(sqlite(file_, state), "40|renamed\n9223372036854775807\nok");
}

TEST_F(SqliteStoreTest, LeavesTheJournalModeAndTheLogOfOthers) {
  makeStoreWithPlans(file_);
  sqlite(file_, "PRAGMA journal_mode = DELETE");
  {
    OpenStore store(file_);
    store.insertPlan("more", 1);
    ASSERT_TRUE(store.context.save());
  }
  EXPECT_EQ(sqlite(file_, "PRAGMA journal_mode"), "delete");
  StoreOptions options = test::mainOptions();
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
  StoreOptions readOnly = test::mainOptions();
  readOnly.readOnly = true;
  for (const auto& opening : {readOnly, test::mainOptions()}) {
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
  StoreOptions readOnly = test::mainOptions();
  readOnly.readOnly = true;
  EXPECT_EQ(OpenStore(file_, readOnly).names(), "first");
  EXPECT_TRUE(PersistentStoreCoordinator::metadataForPersistentStore(file_));
  EXPECT_EQ(sqlite(file_, "UPDATE ZPLANNING SET ZNOTES = 'by another program'"), "");
  store.insertPlan("second", 2);
  ASSERT_TRUE(store.context.save());
  EXPECT_EQ(sqlite(file_, "SELECT ZNAME, ZNOTES FROM ZPLANNING"),
            "first|by another program\nsecond|");
}

TEST_F(SqliteStoreTest, ReadsNothingHalfWritten) {
  makeStoreWithPlans(file_);
  sqlite(file_, "PRAGMA journal_mode = DELETE");
  const auto copy = directory_ / "Copy.sqlite";
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(file_.c_str(), &other), SQLITE_OK);
  // A cache of one page has the rest written before the end.
  ASSERT_EQ(sqlite3_exec(other, "PRAGMA cache_size = 1; BEGIN; UPDATE ZPLANNING SET ZNAME = 'half'",
                         nullptr, nullptr, nullptr),
            SQLITE_OK);
  fs::copy_file(file_, copy);
  fs::copy_file(file_.string() + "-journal", copy.string() + "-journal");
  sqlite3_close(other);
  StoreOptions readOnly = test::mainOptions();
  readOnly.readOnly = true;
  EXPECT_EQ(openingError(copy, readOnly), StoreErrorCode::kPermission);
  EXPECT_FALSE(OpenStore(copy).planNamed("half")) << "who may write takes it back";
  EXPECT_EQ(sqlite(copy, "PRAGMA integrity_check; SELECT count(*) FROM ZPLANNING"), "ok\n40");
}

/// Runs the function where nothing may be done that a user may not do, and gives what it gives.
std::string withoutPrivileges(const fs::path& folder,
                              const std::function<std::string()>& function) {
  constexpr uid_t kNobody = 65534;
  const fs::path result = folder / "result";
  const pid_t child = ::fork();
  if (child == 0) {
    const int file = ::open(result.c_str(), O_CREAT | O_WRONLY | O_TRUNC, 0666);
    if (::geteuid() == 0 && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)) ::_exit(1);
    const std::string text = function();
    ::_exit(::write(file, text.data(), text.size()) < 0 ? 1 : 0);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return status == 0 ? test::readFile(result) : "no result";
}

TEST_F(SqliteStoreTest, ReadsAndWritesOnlyWhatItMay) {
  const auto folder = directory_ / "folder";
  const auto file = folder / "Vantrel.sqlite";
  constexpr auto kAll = fs::perms::all;
  constexpr auto kReadFolder = fs::perms::owner_read | fs::perms::owner_exec |
                               fs::perms::others_read | fs::perms::others_exec;
  constexpr auto kReadFile = fs::perms::owner_read | fs::perms::others_read;
  constexpr auto kNothing = fs::perms::none;
  fs::permissions(directory_.path(), kAll);
  // Read beforehand: the build may lie where only its owner may look.
  const auto model = test::mainModel();
  struct Case {
    const char* name;
    bool isMade;
    bool hasLog;
    fs::perms folder;
    fs::perms file;
    const char* expected;  // What opening, reading and saving give.
  };
  const std::vector<Case> cases = {
      {"everything", true, false, kAll, kAll, "40 plans, saved"},
      {"a file only to be read", true, false, kAll, kReadFile, "40 plans, permission"},
      {"a folder only to be read", true, false, kReadFolder, kReadFile, "40 plans, permission"},
      {"a folder only to be read, with a log", true, true, kReadFolder, kReadFile, "permission"},
      {"a file not to be read", true, false, kAll, kNothing, "permission"},
      {"a folder not to be entered", true, false, kNothing, kReadFile, "permission"},
      {"no file, a folder only to be read", false, false, kReadFolder, kNothing, "permission"},
      {"no file", false, false, kAll, kNothing, "0 plans, saved"},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    fs::create_directory(folder);
    if (row.isMade) {
      makeStoreWithPlans(file_);
      fs::rename(file_, file);
      fs::permissions(file, row.file);
    }
    if (row.hasLog) test::writeFile(file.string() + "-wal", std::string(4096, 'x'));
    fs::permissions(folder, row.folder);
    const auto result = withoutPrivileges(directory_.path(), [&]() -> std::string {
      const auto tell = [](const Error& error) -> std::string {
        return storeErrorCode(error) == StoreErrorCode::kPermission ? "permission"
                                                                    : error.localizedDescription;
      };
      OpenStore store(file, test::mainOptions(), model);
      if (!store.store) return tell(store.store.error());
      const auto count = store.context.countForFetchRequest({.entityName = "Planning"});
      if (!count) return tell(count.error());
      store.insertPlan("new", 1);
      const auto saved = store.context.save();
      return std::to_string(*count) + " plans, " + (saved ? "saved" : tell(saved.error()));
    });
    EXPECT_EQ(result, row.expected);
    fs::permissions(folder, kAll);
    fs::remove_all(folder);
  }
}

}  // namespace
}  // namespace vantrel
