#include "common/StoreWatcher.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/resource.h>

#include <filesystem>
#include <functional>
#include <string>

#include "support/Guards.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using Change = StoreWatcher::Change;
using test::writeFile;

TEST(StoreWatcher, ReportsChangesOfTheStoresFilesOnly) {
  struct Case {
    const char* name;
    std::function<void(const fs::path& folder)> action;
    Change expected;
  };
  const Case cases[] = {
      {"nothing", [](const fs::path&) {}, Change::kNone},
      {"store written in place", [](const fs::path& f) { writeFile(f / "S.sqlite", "more"); },
       Change::kContent},
      {"write-ahead log written",
       [](const fs::path& f) { writeFile(f / "S.sqlite-wal", "commit"); }, Change::kContent},
      {"rollback journal removed", [](const fs::path& f) { fs::remove(f / "S.sqlite-journal"); },
       Change::kContent},
      {"shared memory written by a reader",
       [](const fs::path& f) { writeFile(f / "S.sqlite-shm", "lock"); }, Change::kNone},
      {"neighbour written", [](const fs::path& f) { writeFile(f / "T.sqlite", "x"); },
       Change::kNone},
      {"store removed", [](const fs::path& f) { fs::remove(f / "S.sqlite"); }, Change::kContent},
      {"another file moved over the store",
       [](const fs::path& f) {
         writeFile(f / "copy", "other");
         fs::rename(f / "copy", f / "S.sqlite");
       },
       Change::kReplaced},
      {"folder made anew with another store",
       [](const fs::path& f) {
         fs::rename(f, f.string() + ".old");
         fs::create_directory(f);
         writeFile(f / "S.sqlite", "other");
       },
       Change::kReplaced},
      {"folder above made anew with another store",
       [](const fs::path& f) {
         fs::rename(f.parent_path(), f.parent_path().string() + ".old");
         fs::create_directories(f);
         writeFile(f / "S.sqlite", "other");
       },
       Change::kReplaced},
      {"log that a failed opening creates and removes",
       [](const fs::path& f) {
         writeFile(f / "S.sqlite-wal", "");
         writeFile(f / "S.sqlite-shm", "lock");
         fs::remove(f / "S.sqlite-wal");
         fs::remove(f / "S.sqlite-shm");
       },
       Change::kNone},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const test::TemporaryDirectory directory;
    const fs::path folder = directory / "data" / "group";
    fs::create_directories(folder);
    writeFile(folder / "S.sqlite", "store");
    writeFile(folder / "S.sqlite-journal", "journal");
    StoreWatcher watcher(folder / "S.sqlite");
    c.action(folder);
    EXPECT_EQ(watcher.read(), c.expected);
    EXPECT_EQ(watcher.read(), Change::kNone) << "reported twice";
  }
}

TEST(StoreWatcher, FollowsALinkThatIsPointedElsewhere) {
  const test::TemporaryDirectory directory;
  writeFile(directory / "first", "first");
  writeFile(directory / "second", "second");
  fs::create_directory(directory / "group");
  const fs::path link = directory / "group" / "S.sqlite";
  fs::create_symlink(directory / "first", link);
  StoreWatcher watcher(link);
  fs::remove(link);
  fs::create_symlink(directory / "second", link);
  EXPECT_EQ(watcher.read(), Change::kReplaced);
  writeFile(directory / "second-wal", "commit");
  EXPECT_EQ(watcher.read(), Change::kReplaced) << "until it is taken";
  EXPECT_EQ(watcher.takeChange(), Change::kReplaced);
  writeFile(directory / "second-wal", "commit 2");
  EXPECT_EQ(watcher.read(), Change::kContent);
}

TEST(StoreWatcher, LooksOftenWithoutAWatch) {
  const test::TemporaryDirectory directory;
  writeFile(directory / "S.sqlite", "store");
  test::LogCapture log;
  rlimit before{};
  getrlimit(RLIMIT_NOFILE, &before);
  const rlimit none{0, before.rlim_max};
  setrlimit(RLIMIT_NOFILE, &none);
  StoreWatcher watcher(directory / "S.sqlite");
  setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(watcher.fileDescriptor(), -1);
  EXPECT_TRUE(watcher.isPolling());
  EXPECT_THAT(log.text(), testing::HasSubstr("cannot watch its folder"));
  EXPECT_EQ(watcher.pollingInterval(), 2);
  EXPECT_EQ(watcher.read(), Change::kNone);
  writeFile(directory / "S.sqlite-wal", "commit");
  EXPECT_EQ(watcher.read(), Change::kContent);
  // As where the system has no more watches: a descriptor, but the folder cannot be watched.
  const StoreWatcher blind(directory / std::string(300, 'x') / "S.sqlite");
  EXPECT_GE(blind.fileDescriptor(), 0);
  EXPECT_TRUE(blind.isPolling());
}

TEST(StoreWatcher, FindsAStoreWhoseFoldersComeAndGo) {
  const test::TemporaryDirectory directory;
  const fs::path folder = directory / "data" / "group";
  StoreWatcher watcher(folder / "S.sqlite");
  writeFile(directory / "unrelated", "");
  EXPECT_EQ(watcher.read(), Change::kNone);

  fs::create_directories(folder);
  writeFile(folder / "S.sqlite", "first");
  EXPECT_EQ(watcher.read(), Change::kContent);

  fs::remove_all(directory / "data");
  EXPECT_EQ(watcher.read(), Change::kContent);
  fs::create_directory(directory / "data");
  watcher.read();
  fs::create_directory(folder);
  watcher.read();
  writeFile(folder / "S.sqlite-wal", "commit");
  EXPECT_EQ(watcher.read(), Change::kContent);
}

}  // namespace
}  // namespace vantrel
