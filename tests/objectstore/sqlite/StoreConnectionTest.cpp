#include "objectstore/sqlite/StoreConnection.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <functional>

#include "support/TestStore.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using test::mainOptions;
using test::openingError;
using test::OpenStore;
using test::readOnlyOptions;
using test::sqlite;

class StoreConnectionTest : public test::StoreTest {
 protected:
  /// Forty plans as a program leaves them that is stopped while it writes, with a rollback journal.
  void copyHalfWritten(const fs::path& copy) {
    sqlite(file_, "PRAGMA journal_mode = DELETE");
    // A cache of one page has the rest written before the end.
    const test::OtherWriter other(
        file_, "PRAGMA cache_size = 1; BEGIN; UPDATE ZPLANNING SET ZNAME = 'half'");
    fs::copy_file(file_, copy);
    fs::copy_file(file_.string() + "-journal", copy.string() + "-journal");
  }
};

TEST_F(StoreConnectionTest, LeavesTheJournalModeAndTheLogOfOthers) {
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

  // A copy made while its program runs: the last plan is in the log alone.
  OpenStore writer(file_);
  writer.insertPlan("last", 1);
  ASSERT_TRUE(writer.context.save());
  const auto copy = copyOfFile();
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
TEST_F(StoreConnectionTest, LosesNothingWhenTheProcessReadsTheFileBesides) {
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

TEST_F(StoreConnectionTest, ReadsNothingHalfWritten) {
  saveFortyPlans();
  const auto copy = directory_ / "Copy.sqlite";
  copyHalfWritten(copy);
  EXPECT_EQ(openingError(copy, readOnlyOptions()), StoreErrorCode::kPermission);
  EXPECT_FALSE(OpenStore(copy).planNamed("half")) << "who may write takes it back";
  EXPECT_EQ(sqlite(copy, "PRAGMA integrity_check; SELECT count(*) FROM ZPLANNING"), "ok\n40");

  const auto described = directory_ / "Described.sqlite";
  copyHalfWritten(described);
  EXPECT_TRUE(PersistentStoreCoordinator::metadataForPersistentStore(described));
  EXPECT_FALSE(OpenStore(described, readOnlyOptions()).planNamed("half"));
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

TEST_F(StoreConnectionTest, ReadsAndWritesOnlyWhatItMay) {
  // Read beforehand: the build may lie where only its owner may look.
  const auto model = test::mainModel();
  const auto folder = directory_ / "folder";
  const auto file = folder / "Vantrel.sqlite";
  const std::string kLog = "-wal";
  const std::string kJournal = "-journal";
  struct Case {
    const char* name;
    unsigned folder;
    std::optional<unsigned> file;
    const char* expected;
    std::string left = {};
  };
  const std::vector<Case> cases = {
      {"everything", 0777, 0777, "40 plans, saved"},
      {"a file only to be read", 0777, 0444, "40 plans, permission"},
      {"a folder only to be read", 0555, 0444, "40 plans, permission"},
      {"a folder only to be read, with a log", 0555, 0444, "permission", kLog},
      {"a folder only to be read, with a journal", 0555, 0444, "permission", kJournal},
      {"the same, and the file to be written", 0555, 0666, "permission", kJournal},
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
      if (row.left == kJournal) {
        copyHalfWritten(file);
        fs::remove(file_);
      } else {
        fs::rename(file_, file);
      }
      fs::permissions(file, fs::perms(*row.file));
    }
    if (row.left == kLog) test::writeFile(file.string() + kLog, std::string(4096, 'x'));
    fs::permissions(folder, fs::perms(row.folder));
    EXPECT_EQ(withoutPrivileges(directory_ / "result", [&] { return useStore(file, model); }),
              row.expected);
    fs::permissions(folder, fs::perms(0777));
    for (const auto& suffix : {kLog, kJournal}) {
      EXPECT_EQ(fs::exists(file.string() + suffix), row.left == suffix);
    }
    EXPECT_FALSE(fs::exists(file.string() + "-shm"));
    fs::remove_all(folder);
  }
}

TEST_F(StoreConnectionTest, CopiesWhatItMayOnlyRead) {
  const auto model = test::mainModel();
  const auto old = directory_ / "old";
  const auto target = directory_ / "target";
  const auto pictures = old / ".Vantrel_SUPPORT/_EXTERNAL_DATA";
  fs::create_directories(pictures);
  fs::create_directory(target);
  test::writeFile(pictures / "A", "picture");
  saveFortyPlans();
  fs::rename(file_, old / "Vantrel.sqlite");
  for (const auto& path : {directory_.path(), target}) fs::permissions(path, fs::perms(0777));
  for (const auto& path : {pictures / "A", old / "Vantrel.sqlite"}) {
    fs::permissions(path, fs::perms(0444));
  }
  for (const auto& path : {pictures, pictures.parent_path(), old}) {
    fs::permissions(path, fs::perms(0555));
  }
  const auto copy = [&] {
    const auto done =
        SqliteStore::copy(old / "Vantrel.sqlite", target / "New.sqlite", mainOptions(), model);
    return done ? std::string("copied") : done.error().localizedDescription;
  };
  EXPECT_EQ(withoutPrivileges(directory_ / "result", copy), "copied");
  EXPECT_EQ(test::readFile(target / ".New_SUPPORT/_EXTERNAL_DATA/A"), "picture");
  // Without the right to read a picture, it leaves nothing.
  fs::permissions(pictures / "A", fs::perms::none);
  fs::remove_all(target / ".New_SUPPORT");
  fs::remove(target / "New.sqlite");
  EXPECT_EQ(withoutPrivileges(directory_ / "result", copy),
            "the store's files cannot be accessed: permission denied");
  EXPECT_TRUE(fs::is_empty(target));
  for (const auto& path : {old, pictures.parent_path(), pictures}) {
    fs::permissions(path, fs::perms(0777));
  }
}

}  // namespace
}  // namespace vantrel
