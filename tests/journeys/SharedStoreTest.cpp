// Several processes on one store at the same time.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include "support/TestStore.h"

namespace vantrel {
namespace {

using test::OpenStore;
using test::sqlite;

/// Starts the function in a new process, which exits with 0 if it returns true.
pid_t start(const std::function<bool()>& function) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(function() ? 0 : 1);
  return child;
}

bool succeeded(pid_t child) {
  int status = 0;
  return ::waitpid(child, &status, 0) == child && status == 0;
}

class SharedStoreTest : public test::StoreTest {};

TEST_F(SharedStoreTest, ProcessesCreateAndFillOneStore) {
  constexpr int kPrograms = 4;
  constexpr int kPlans = 20;
  std::vector<pid_t> children;
  for (int program = 0; program < kPrograms; ++program) {
    children.push_back(start([&] {
      OpenStore store(file_);
      for (int plan = 0; plan < kPlans && store.store; ++plan) {
        store.insertPlan(std::to_string(program * kPlans + plan), plan);
        if (!store.context.save()) return false;
      }
      return store.store.has_value();
    }));
  }
  for (const pid_t child : children) EXPECT_TRUE(succeeded(child));
  EXPECT_EQ(sqlite(file_,
                   "SELECT count(*), count(DISTINCT ZNAME), count(DISTINCT ZUNIQUEIDENTIFIER),"
                   " min(Z_PK), max(Z_PK) FROM ZPLANNING; SELECT Z_MAX FROM Z_PRIMARYKEY WHERE"
                   " Z_NAME = 'Planning'; SELECT count(*) FROM Z_METADATA; PRAGMA integrity_check"),
            "80|80|80|1|80\n80\n1\nok");
}

TEST_F(SharedStoreTest, ALockLastsFromTheFetchToTheSave) {
  constexpr int kPrograms = 4;
  constexpr int kPlans = 20;
  { OpenStore store(file_); }
  std::vector<pid_t> children;
  children.reserve(kPrograms);
  for (int program = 0; program < kPrograms; ++program) {
    children.push_back(start([&] {
      OpenStore store(file_);
      for (int plan = 0; plan < kPlans; ++plan) {
        if (!store.context.lockStore()) return false;
        const auto count = store.context.countForFetchRequest({.entityName = "Planning"});
        if (!count) return false;
        store.insertPlan(std::to_string(*count), 0);
        if (!store.context.save()) return false;
      }
      return true;
    }));
  }
  for (const pid_t child : children) EXPECT_TRUE(succeeded(child));
  EXPECT_EQ(sqlite(file_, "SELECT count(DISTINCT ZNAME), max(ZNAME + 0) FROM ZPLANNING"), "80|79");

  // Each of these releases the lock; only the save writes.
  OpenStore store(file_);
  const std::string write = "UPDATE ZPLANNING SET ZNOTES = 'x' WHERE Z_PK = 1";
  const std::function<void()> ends[] = {[&] { store.context.unlockStore(); },
                                        [&] { store.context.reset(); },
                                        [&] { EXPECT_TRUE(store.context.save()); }};
  for (const auto& end : ends) {
    ASSERT_TRUE(store.context.lockStore());
    EXPECT_TRUE(store.context.lockStore());
    EXPECT_THAT(sqlite(file_, write), testing::HasSubstr("locked"));
    end();
    EXPECT_EQ(sqlite(file_, write), "");
  }
}

TEST_F(SharedStoreTest, AFetchSeesTheSavesOfOtherProcesses) {
  for (const std::string mode : {"wal", "delete"}) {
    SCOPED_TRACE(mode);
    std::filesystem::remove(file_);
    { OpenStore store(file_); }
    ASSERT_EQ(sqlite(file_, "PRAGMA journal_mode = " + mode), mode);
    OpenStore reader(file_);
    EXPECT_EQ(reader.names(), "");
    EXPECT_EQ(sqlite(file_,
                     "BEGIN IMMEDIATE; UPDATE Z_PRIMARYKEY SET Z_MAX = 2 WHERE Z_ENT = 4;"
                     "INSERT INTO ZPLANNING (Z_PK, Z_ENT, Z_OPT, ZNAME) VALUES (1, 4, 1, 'a'),"
                     " (2, 4, 1, 'b'); COMMIT"),
              "");
    EXPECT_EQ(reader.names(), "a b");
    const auto a = reader.planNamed("a");
    EXPECT_EQ(sqlite(file_,
                     "UPDATE ZPLANNING SET ZNAME = 'c', Z_OPT = 2 WHERE Z_PK = 1;"
                     "DELETE FROM ZPLANNING WHERE Z_PK = 2"),
              "");
    EXPECT_EQ(reader.names(), "c");
    a->setNotes("and on");
    EXPECT_TRUE(reader.context.save());
    EXPECT_EQ(sqlite(file_, "SELECT ZNAME, ZNOTES, Z_OPT FROM ZPLANNING"), "c|and on|3");
  }
}

}  // namespace
}  // namespace vantrel
