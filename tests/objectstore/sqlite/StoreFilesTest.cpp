// The files beside a store: drafts of one that is being made, and pictures with files of their own.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include "support/Guards.h"
#include "support/TestStore.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using test::OpenStore;
using test::sqlite;

TEST(StoreFiles, MakingAStoreClearsAwayWhatAStoppedProgramLeft) {
  const test::TemporaryDirectory directory;
  const auto file = directory / "Vantrel.sqlite";
  const std::string stale = "Vantrel.sqlite.7F9E3C55-2A0B-4C0E-8A64-1D9A1F0F2B31";
  const std::string working = "Vantrel.sqlite.0B1F6C1E-5D0E-4C57-9C38-6A2D9B1E7F10";
  for (const char* suffix : {"", "-wal", "-shm"})
    test::writeFile(directory / (stale + suffix), "x");
  fs::create_directories(directory / ".Vantrel_SUPPORT.7F9E3C55-2A0B-4C0E-8A64-1D9A1F0F2B31/a");
  test::writeFile(directory / "Vantrel.sqlite.backup", "mine");
  test::writeFile(directory / working, "");
  // Another program's draft: it holds the lock.
  const int other = ::open((directory / working).c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_EQ(::flock(other, LOCK_EX), 0);
  ASSERT_TRUE(OpenStore(file).store);
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(directory.path())) {
    names.insert(entry.path().filename().string());
  }
  EXPECT_THAT(names, testing::ElementsAre("Vantrel.sqlite", working, "Vantrel.sqlite.backup"));
  ::close(other);
}

TEST(StoreFiles, APicturesFileGoesWithTheLastRowThatNamesIt) {
  const test::TemporaryDirectory directory;
  const auto file = directory / "Vantrel.sqlite";
  OpenStore store(file);
  for (const char* name : {"a", "b", "c"}) store.insertPlan(name, 1);
  ASSERT_TRUE(store.context.save());
  const auto folder = directory / ".Vantrel_SUPPORT/_EXTERNAL_DATA";
  fs::create_directories(folder);
  const auto picture = [&](int digit) {
    return folder / (std::string(35, 'A') + std::to_string(digit));
  };
  // Pictures by plan and file: b and c share file 2.
  const std::pair<int, int> pictures[] = {{1, 1}, {2, 2}, {3, 2}, {3, 3}};
  for (const auto& [plan, digit] : pictures) {
    test::writeFile(picture(digit), "picture");
    sqlite(file, "INSERT INTO ZIMAGE (Z_ENT, Z_OPT, ZPLANNING, ZDATA) VALUES (3, 1, " +
                     std::to_string(plan) + ", CAST(x'02' || '" +
                     picture(digit).filename().string() + "' || x'00' AS BLOB))");
  }
  const auto left = [&] {
    std::string digits;
    for (const int digit : {1, 2, 3}) {
      if (fs::exists(picture(digit))) digits += std::to_string(digit);
    }
    return digits;
  };
  const auto remove = [&](const char* name) {
    store.context.deleteObject(store.planNamed(name));
    return store.context.save().has_value();
  };
  EXPECT_TRUE(remove("b"));
  EXPECT_EQ(left(), "123");
  // Another program's change makes the save fail: nothing is gone.
  const auto plan = store.planNamed("a");
  sqlite(file, "UPDATE ZPLANNING SET Z_OPT = 7 WHERE ZNAME = 'a'");
  store.context.deleteObject(plan);
  EXPECT_FALSE(store.context.save());
  EXPECT_EQ(left(), "123");
  store.context.reset();
  EXPECT_TRUE(remove("a"));
  EXPECT_EQ(left(), "23");
  const auto images = store.planNamed("c")->relatedObjects("images");
  ASSERT_EQ(images.size(), 2u);
  EXPECT_TRUE(images[1]->setValueForKey(std::vector<std::byte>(9), "data"));
  EXPECT_TRUE(store.context.save());
  EXPECT_EQ(left(), "2") << "its bytes stand in the row now";
}

}  // namespace
}  // namespace vantrel
