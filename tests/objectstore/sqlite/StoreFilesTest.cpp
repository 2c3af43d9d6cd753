// The files beside a store: drafts of one that is being made, and pictures with files of their own.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <functional>

#include "support/Guards.h"
#include "support/TestStore.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using test::OpenStore;
using test::sqlite;

/// Called before each synchronisation of a whole file system.
std::function<void()> beforeSyncfs;

TEST(StoreFiles, MakingAStoreRemovesAbandonedDraftsOnly) {
  const test::TemporaryDirectory directory;
  const std::string draft = ".vantrel-draft.7F9E3C55-2A0B-4C0E-8A64-1D9A1F0F2B3";
  const char* const marker = "vantrel-store-draft.lock";
  const auto add = [&](const std::string& path) {
    fs::create_directories((directory / path).parent_path());
    test::writeFile(directory / path, "x");
  };
  const auto addDraft = [&](const std::string& path) {
    for (const char* name : {"Draft.sqlite", "Draft.sqlite-wal", ".Draft_SUPPORT/a/b"}) {
      add(path + "/" + name);
    }
  };
  // Killed while it worked, and before it had a marker.
  add(draft + "0/" + marker);
  addDraft(draft + "0");
  fs::create_directories(directory / (draft + "1"));
  // Locked by another process; without a marker; with another file; a link to a draft.
  add(draft + "2/" + marker);
  addDraft(draft + "2");
  addDraft(draft + "3");
  add(draft + "4/" + marker);
  add(draft + "4/mine");
  add("elsewhere/" + std::string(marker));
  fs::create_directory_symlink("elsewhere", directory / (draft + "5"));
  // Old stores of whatever name.
  add("Vantrel.sqlite.7F9E3C55-2A0B-4C0E-8A64-1D9A1F0F2B31");
  add("Vantrel.sqlite.------------------------------------");
  add(".Vantrel_SUPPORT.7F9E3C55-2A0B-4C0E-8A64-1D9A1F0F2B31/a");
  const auto working = directory / (draft + "2") / marker;
  const int other = ::open(working.c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_EQ(::flock(other, LOCK_EX), 0);
  ASSERT_TRUE(OpenStore(directory / "Vantrel.sqlite").store);
  ::close(other);
  std::set<std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(directory.path())) {
    if (!entry.is_directory() || fs::is_empty(entry) || entry.is_symlink()) {
      files.insert(entry.path().lexically_relative(directory.path()).string());
    }
  }
  EXPECT_THAT(files, testing::UnorderedElementsAre(
                         "Vantrel.sqlite", draft + "2/" + marker, draft + "2/Draft.sqlite",
                         draft + "2/Draft.sqlite-wal", draft + "2/.Draft_SUPPORT/a/b",
                         draft + "3/Draft.sqlite", draft + "3/Draft.sqlite-wal",
                         draft + "3/.Draft_SUPPORT/a/b", draft + "4/mine", draft + "5",
                         "elsewhere/" + std::string(marker),
                         "Vantrel.sqlite.7F9E3C55-2A0B-4C0E-8A64-1D9A1F0F2B31",
                         "Vantrel.sqlite.------------------------------------",
                         ".Vantrel_SUPPORT.7F9E3C55-2A0B-4C0E-8A64-1D9A1F0F2B31/a"));
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

// After a power cut, a picture whose name is on the disk and whose content is not would be in the
// way of the next copy, and a store would be without its picture.
TEST(StoreFiles, ACopySynchronisesPicturesThenTheirNamesThenTheStore) {
  const test::TemporaryDirectory directory;
  fs::create_directories(directory / ".Vantrel_SUPPORT/_EXTERNAL_DATA");
  test::writeFile(directory / ".Vantrel_SUPPORT/_EXTERNAL_DATA" / std::string(36, 'A'), "picture");
  ASSERT_TRUE(OpenStore(directory / "Vantrel.sqlite").store);
  std::string found;
  beforeSyncfs = [&] {
    found += fs::exists(directory / ".Copy_SUPPORT") ? "pictures" : "nothing";
    found += fs::exists(directory / "Copy.sqlite") ? " and the store\n" : "\n";
  };
  const auto copied = SqliteStore::copy(directory / "Vantrel.sqlite", directory / "Copy.sqlite",
                                        test::mainOptions(), test::mainModel());
  beforeSyncfs = nullptr;
  ASSERT_TRUE(copied);
  EXPECT_EQ(found, "nothing\npictures\n");
}

}  // namespace
}  // namespace vantrel

/// In place of the C library's.
int syncfs(int number) noexcept {
  if (vantrel::beforeSyncfs) vantrel::beforeSyncfs();
  return static_cast<int>(::syscall(SYS_syncfs, number));
}
