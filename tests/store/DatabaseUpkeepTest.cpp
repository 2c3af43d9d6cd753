#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>
#include <map>

#include "objectstore/sqlite/StoreError.h"
#include "platform/system/SerialMainQueue.h"
#include "store/Database.h"
#include "support/Guards.h"
#include "support/TestStore.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using test::OpenStore;
using test::sqlite;

/// A separate group container.
struct Group {
  fs::path file() const { return directory / "Vantrel.sqlite"; }
  const test::TemporaryDirectory directory;
  const test::EnvironmentGuard guard{"VANTREL_GROUP_CONTAINER", directory.path().string()};
};

constexpr const char* kPicture = "7F9E3C55-2A0B-4C0E-8A64-1D9A1F0F2B31";

/// The bytes of all files in a folder, by path.
std::map<std::string, std::string> contentOf(const fs::path& folder) {
  std::map<std::string, std::string> content;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    content[entry.path()] = entry.is_regular_file() ? test::readFile(entry) : "";
  }
  return content;
}

/// Creates a store with a plan, a picture in an external file, and a table and column not in our
/// models.
void makeStore(const fs::path& file, const std::string& version) {
  {
    OpenStore store(file, test::mainOptions(), test::mainModelOfVersion(version));
    store.insertPlan("Sunrise", 1);
    ASSERT_TRUE(store.context.save());
  }
  const auto folder = file.parent_path() / ".Old_SUPPORT/_EXTERNAL_DATA";
  fs::create_directories(folder);
  test::writeFile(folder / kPicture, "outside");
  EXPECT_EQ(sqlite(file, std::string("CREATE TABLE ZGUEST (Z_PK INTEGER PRIMARY KEY, ZX);"
                                     "INSERT INTO ZGUEST VALUES (5, 'kept');"
                                     "ALTER TABLE ZPLANNING ADD COLUMN ZMOOD VARCHAR;"
                                     "UPDATE ZPLANNING SET ZMOOD = 'calm';"
                                     "INSERT INTO ZIMAGE (Z_PK, Z_ENT, Z_OPT, ZPLANNING, ZDATA)"
                                     " VALUES (1, 3, 1, 1, CAST(x'02' || '") +
                             kPicture + "' || x'00' AS BLOB))"),
            "");
}

/// Runs SQL in a process that is then killed: it is left unfinished, or in the log.
void writeAndDie(const fs::path& file, const std::string& sql) {
  const auto result = test::runProgram(
      {"python3", "-c",
       "import os, sqlite3, sys; c = sqlite3.connect(sys.argv[1], isolation_level=None)\n"
       "for s in sys.argv[2].split(';'): c.execute(s)\n"
       "os.kill(os.getpid(), 9)",
       file, sql});
  EXPECT_EQ(result.exitCode, 128 + 9) << result.errors;
}

TEST(DatabaseUpkeep, CopiesAStoreInAnyStateAndOnlyReadsIt) {
  struct Case {
    const char* name;
    const char* version;
    std::function<void(const fs::path&)> prepare;
    const char* names;
  };
  const Case cases[] = {
      {"at rest", "4", [](const fs::path&) {}, "Sunrise"},
      {"an older version", "3", [](const fs::path&) {}, "Sunrise"},
      {"with a log and no index, as from the phone", "3",
       [](const fs::path& file) {
         writeAndDie(file, "UPDATE ZPLANNING SET ZNAME = 'Logged'");
         fs::remove(file.string() + "-shm");
       },
       "Logged"},
      {"with a log and its index", "4",
       [](const fs::path& file) { writeAndDie(file, "UPDATE ZPLANNING SET ZNAME = 'Logged'"); },
       "Logged"},
      {"a rollback journal", "4",
       [](const fs::path& file) { sqlite(file, "PRAGMA journal_mode = DELETE"); }, "Sunrise"},
      {"stopped half-way with a rollback journal", "4",
       [](const fs::path& file) {
         writeAndDie(file,
                     "PRAGMA journal_mode = DELETE; PRAGMA cache_size = 1; BEGIN IMMEDIATE;"
                     "UPDATE ZPLANNING SET ZNAME = 'Half', ZNOTES = hex(randomblob(500000))");
         EXPECT_GT(fs::file_size(file.string() + "-journal"), 512u);
       },
       "Sunrise"},
      {"of another program, without our hashes", "4",
       [](const fs::path& file) { sqlite(file, "UPDATE Z_METADATA SET Z_PLIST = NULL"); },
       "Sunrise"},
      {"with a link in place of the folder of pictures", "4",
       [](const fs::path& file) {
         fs::rename(file.parent_path() / ".Old_SUPPORT", file.parent_path() / "pictures");
         fs::create_directory_symlink("pictures", file.parent_path() / ".Old_SUPPORT");
       },
       "Sunrise"},
      {"by a link, with a log", "4",
       [](const fs::path& file) {
         const auto folder = file.parent_path() / "elsewhere";
         fs::create_directory(folder);
         fs::rename(file, folder / "Real.sqlite");
         fs::rename(file.parent_path() / ".Old_SUPPORT", folder / ".Real_SUPPORT");
         fs::create_symlink("elsewhere/Real.sqlite", file);
         writeAndDie(folder / "Real.sqlite", "UPDATE ZPLANNING SET ZNAME = 'Logged'");
       },
       "Logged"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const test::TemporaryDirectory old;
    const test::TemporaryDirectory target;
    const auto file = old / "Old.sqlite";
    const auto copy = target / "Vantrel.sqlite";
    makeStore(file, c.version);
    c.prepare(file);
    auto before = contentOf(old.path());
    Database database;
    ASSERT_TRUE(database.migrateDatabase(file, copy));
    auto after = contentOf(old.path());
    // The index is memory shared by readers.
    const std::string index = fs::canonical(file).string() + "-shm";
    before[index] = after[index] = "";
    EXPECT_EQ(before, after);

    EXPECT_EQ(contentOf(target.path()).size(), 4u) << "no log and no draft";
    EXPECT_EQ(fs::status(copy).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(sqlite(copy,
                     "PRAGMA integrity_check; PRAGMA journal_mode; SELECT * FROM ZGUEST;"
                     "SELECT ZMOOD FROM ZPLANNING"),
              "ok\nwal\n5|kept\ncalm");
    EXPECT_EQ(sqlite(copy, "SELECT Z_UUID FROM Z_METADATA"),
              sqlite("file:" + file.string() + "?immutable=1", "SELECT Z_UUID FROM Z_METADATA"));
    OpenStore store(copy);
    EXPECT_EQ(store.names(), c.names);
    const auto image = store.context.executeFetchRequest({.entityName = "Image"})->front();
    EXPECT_EQ(std::get<std::vector<std::byte>>(image->valueForKey("data")).size(), 7u);
    EXPECT_TRUE(image->setValueForKey("X", "uniqueIdentifier") && store.context.save())
        << "an attribute that version 3 lacks";
  }
}

TEST(DatabaseUpkeep, CopiesOnlyToAFolderOfItsOwnForPictures) {
  const test::TemporaryDirectory directory;
  makeStore(directory / "Old.sqlite", "4");
  fs::create_directory_symlink(".", directory / "link");
  Database database;
  const auto copy = [&](const char* name) {
    return database.migrateDatabase(directory / "Old.sqlite", directory / name);
  };
  EXPECT_FALSE(copy("Old.bak") || copy("link/Old.bak") || copy("Old"));
  test::writeFile(directory / "New.txt", "notes");
  fs::create_symlink("Old.sqlite", directory / "New.link");
  fs::remove(directory / ".Old_SUPPORT/_EXTERNAL_DATA" / kPicture);
  EXPECT_TRUE(copy("New.sqlite")) << "a picture that the old store lacks too";
}

TEST(DatabaseUpkeep, CopiesAStoreInUse) {
  const test::TemporaryDirectory directory;
  OpenStore store(directory / "Old.sqlite");
  store.insertPlan("in the log", 1);
  ASSERT_TRUE(store.context.save());
  Database database;
  ASSERT_TRUE(database.migrateDatabase(directory / "Old.sqlite", directory / "New.sqlite"));
  EXPECT_EQ(OpenStore(directory / "New.sqlite").names(), "in the log");
  // The copy did not release the locks of the open store.
  store.insertPlan("later", 2);
  EXPECT_TRUE(store.context.save());
  EXPECT_EQ(OpenStore(directory / "New.sqlite").names(), "in the log");
}

TEST(DatabaseUpkeep, FailsToCopyWithoutChangingTheTarget) {
  struct Case {
    const char* name;
    std::function<void(const fs::path& old, const fs::path& copy)> prepare;
    StoreErrorCode code;
  };
  const auto writeAt = [](const char* suffix, const char* content) {
    return [=](const fs::path&, const fs::path& copy) {
      test::writeFile(copy.string() + suffix, content);
    };
  };
  const Case cases[] = {
      {"there is a file", writeAt("", ""), StoreErrorCode::kCannotCreate},
      {"there is a broken link",
       [](const fs::path&, const fs::path& copy) { fs::create_symlink("nowhere", copy); },
       StoreErrorCode::kCannotCreate},
      {"a lost log", writeAt("-wal", "pages"), StoreErrorCode::kCannotCreate},
      {"pictures of another store",
       [](const fs::path&, const fs::path& copy) {
         const auto folder = copy.parent_path() / ".Vantrel_SUPPORT/_EXTERNAL_DATA";
         fs::create_directories(folder);
         test::writeFile(folder / kPicture, "another");
       },
       StoreErrorCode::kCannotCreate},
      {"no old store", [](const fs::path& old, const fs::path&) { fs::remove(old); },
       StoreErrorCode::kMissing},
      {"a text", [](const fs::path& old, const fs::path&) { test::writeFile(old, "no store"); },
       StoreErrorCode::kNotAStore},
      {"nothing in it", [](const fs::path& old, const fs::path&) { test::writeFile(old, ""); },
       StoreErrorCode::kNotAStore},
      {"a foreign store without plans",
       [](const fs::path& old, const fs::path&) {
         fs::copy_file(test::testData("stores/SampleModel_V2.sqlite"), old,
                       fs::copy_options::overwrite_existing);
       },
       StoreErrorCode::kIncompatible},
      {"an earlier copy with the same folder of pictures",
       [](const fs::path& old, const fs::path& copy) {
         fs::copy_file(old, copy.parent_path() / "Vantrel.monday");
       },
       StoreErrorCode::kCannotCreate},
      {"a link to the folder of pictures",
       [](const fs::path& old, const fs::path& copy) {
         fs::create_directory_symlink(old.parent_path() / ".Old_SUPPORT",
                                      copy.parent_path() / ".Vantrel_SUPPORT");
       },
       StoreErrorCode::kCannotCreate},
      {"a FIFO for a journal",
       [](const fs::path& old, const fs::path&) {
         ASSERT_EQ(::mkfifo((old.string() + "-journal").c_str(), 0600), 0);
       },
       StoreErrorCode::kNotAStore},
      {"a FIFO for a picture",
       [](const fs::path& old, const fs::path&) {
         const auto folder = old.parent_path() / ".Old_SUPPORT/_EXTERNAL_DATA";
         ASSERT_EQ(::mkfifo((folder / "F").c_str(), 0600), 0);
       },
       StoreErrorCode::kNotAStore},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const test::TemporaryDirectory old;
    const test::TemporaryDirectory target;
    makeStore(old / "Old.sqlite", "4");
    c.prepare(old / "Old.sqlite", target / "Vantrel.sqlite");
    const auto before = contentOf(target.path());
    Database database;
    const auto copied = database.copyDatabase(old / "Old.sqlite", target / "Vantrel.sqlite");
    ASSERT_FALSE(copied);
    EXPECT_EQ(storeErrorCode(copied.error()), c.code) << copied.error().localizedDescription;
    EXPECT_EQ(contentOf(target.path()), before);
  }
}

TEST(DatabaseUpkeep, DetectsWhetherAMigrationIsNeeded) {
  Group group;
  Database database;
  EXPECT_TRUE(database.isMigrationNeeded()) << "no store";
  makeStore(group.file(), "3");
  EXPECT_TRUE(database.isMigrationNeeded()) << "no coordinator";
  database.persistentStoreCoordinator();
  EXPECT_FALSE(database.isMigrationNeeded()) << "opening has migrated it";
  sqlite(group.file(), "UPDATE Z_METADATA SET Z_PLIST = NULL");
  EXPECT_TRUE(database.isMigrationNeeded()) << "no hashes";
}

TEST(DatabaseUpkeep, SetsMissingIdentifiers) {
  Group group;
  makeStore(group.file(), "3");
  sqlite(group.file(),
         "INSERT INTO ZCUSTOMPOI (Z_ENT, Z_OPT) VALUES (2, 1);"
         "INSERT INTO ZCUSTOMCAMERA (Z_ENT, Z_OPT) VALUES (1, 1)");
  Database database;
  database.performUpdatesFrom3To4();
  EXPECT_EQ(sqlite(group.file(),
                   "SELECT count(*) FROM pragma_table_info('ZPLANNING') WHERE name ="
                   " 'ZUNIQUEIDENTIFIER'"),
            "0")
      << "does nothing without a context";
  const auto plan =
      database.managedObjectContext()->executeFetchRequest({.entityName = "Planning"})->front();
  sqlite(group.file(), "INSERT INTO ZPLANNING (Z_ENT, Z_OPT, ZUNIQUEIDENTIFIER) VALUES (4, 1, '')");
  database.performUpdatesFrom3To4();
  EXPECT_EQ(plan->managedObjectContext(), nullptr) << "the context was reset";
  EXPECT_EQ(sqlite(group.file(),
                   "SELECT length(ZUNIQUEIDENTIFIER), Z_OPT FROM ZPLANNING UNION ALL SELECT"
                   " length(ZUNIQUEIDENTIFIER), Z_OPT FROM ZCUSTOMPOI UNION ALL SELECT"
                   " length(ZUNIQUEIDENTIFIER), Z_OPT FROM ZCUSTOMCAMERA UNION ALL SELECT"
                   " length(ZUNIQUEIDENTIFIER), Z_OPT FROM ZIMAGE"),
            "36|2\n0|1\n36|2\n36|2\n36|2")
      << "an empty identifier is not missing";
}

TEST(DatabaseUpkeep, RemovesDuplicatesOnALaterTurn) {
  const auto queue = std::make_shared<SerialMainQueue>();
  MainQueue::install(queue);
  struct Case {
    const char* name;
    const char* sql;
    const char* left;
    std::optional<StoreErrorCode> error;
  };
  const Case cases[] = {
      {"none", "", "Sunrise|1", std::nullopt},
      {"one with as many pictures",
       "INSERT INTO ZPLANNING (Z_PK, Z_ENT, Z_OPT, ZDATE, ZNAME, ZNOTES) VALUES (2, 4, 1, 1,"
       " 'Sunrise', 'other notes'), (3, 4, 1, 1, 'Sunrise', '');"
       "INSERT INTO ZIMAGE (Z_ENT, Z_OPT, ZPLANNING) VALUES (3, 1, 2)",
       "Sunrise|1\nSunrise|0", std::nullopt},
      {"cameras, one with more megapixels",
       "INSERT INTO ZCUSTOMCAMERA (Z_ENT, Z_OPT, ZMODEL, ZSENSORWIDTH, ZSENSORHEIGHT, ZMEGAPIXELS)"
       " VALUES (1, 1, 'C', 36, 24, 24), (1, 1, 'C', 36, 24, 26), (1, 1, 'C', 36, 24, 24),"
       " (1, 1, 'C', 36, 24, NULL), (1, 1, 'C', 36, 24, NULL)",
       "Sunrise|1\n1|24.0\n2|26.0\n4|\n5|", std::nullopt},
      {"pictures that cannot be counted",
       "INSERT INTO ZPLANNING (Z_ENT, Z_OPT, ZDATE, ZNAME) VALUES (4, 1, 1, 'Sunrise');"
       "DROP INDEX ZIMAGE_ZPLANNING_INDEX; ALTER TABLE ZIMAGE RENAME COLUMN ZPLANNING TO ZSHOOT;"
       "UPDATE Z_METADATA SET Z_PLIST = NULL",
       nullptr, StoreErrorCode::kUnsettledRelation},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const Group group;
    makeStore(group.file(), "4");
    ASSERT_EQ(sqlite(group.file(), c.sql), "");
    const auto before = test::readFile(group.file());
    Database database;
    int calls = 0;
    std::optional<Error> failure;
    database.removeDuplicatesWithCompletion([&](const auto& error) {
      ++calls;
      failure = error;
    });
    EXPECT_EQ(calls, 0);
    queue->runUntilEmpty();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(failure ? storeErrorCode(*failure) : std::nullopt, c.error);
    if (c.left) {
      EXPECT_EQ(sqlite(group.file(),
                       "SELECT ZNAME, (SELECT count(*) FROM ZIMAGE WHERE ZPLANNING ="
                       " ZPLANNING.Z_PK) FROM ZPLANNING; SELECT 'lost' FROM ZIMAGE WHERE"
                       " ZPLANNING IS NULL OR ZPLANNING = 2; SELECT Z_PK, ZMEGAPIXELS FROM"
                       " ZCUSTOMCAMERA"),
                c.left);
    }
    if (c.error || !*c.sql) {
      EXPECT_EQ(test::readFile(group.file()), before);
    }
  }
  MainQueue::install(nullptr);
}

}  // namespace
}  // namespace vantrel
