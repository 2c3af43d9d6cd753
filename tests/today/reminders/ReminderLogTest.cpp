#include "today/reminders/ReminderLog.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#include "support/Guards.h"

namespace vantrel {
namespace {

using std::chrono::minutes;

Reminder reminder(std::string identifier, double date) {
  return {std::move(identifier), Date(date), minutes(30)};
}

TEST(ReminderLog, KeepsEachReminderOnceAndDropsOldOnes) {
  const test::TemporaryDirectory folder;
  const ReminderLog log(folder.path() / "reminders");
  // An identifier of a foreign store may contain any byte, a date any fraction.
  const Reminder odd = reminder("a b\nc%\xff", 800000000.1234567);
  EXPECT_TRUE(log.claim(odd, Date(799999000)).value());
  EXPECT_FALSE(ReminderLog(folder.path() / "reminders").claim(odd, Date(799999000)).value());
  EXPECT_EQ(log.load(), std::vector{odd});
  const Reminder later = reminder("d", 800100000);
  EXPECT_TRUE(log.claim(later, Date(800099000)).value());
  EXPECT_EQ(log.load(), std::vector{later});
  std::ofstream(folder.path() / "reminders", std::ios::app) << "broken\n1 2\n\n1 2 %zz\n";
  EXPECT_EQ(log.load(), std::vector{later});
  EXPECT_FALSE(ReminderLog(folder.path() / "missing" / "reminders").claim(odd, Date(0)));
}

TEST(ReminderLog, GrantsEachReminderToOneProcess) {
  const test::TemporaryDirectory folder;
  constexpr int kProcesses = 4;
  constexpr int kReminders = 50;
  int granted = 0;
  std::vector<pid_t> children;
  for (int process = 0; process < kProcesses; ++process) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      const ReminderLog log(folder.path() / "reminders");
      int count = 0;
      for (int index = 0; index < kReminders; ++index)
        count += log.claim(reminder(std::to_string(index), 1000), Date(0)).value_or(false) ? 1 : 0;
      _exit(count);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    granted += WEXITSTATUS(status);
  }
  EXPECT_EQ(granted, kReminders);
  EXPECT_EQ(ReminderLog(folder.path() / "reminders").load().size(), std::size_t{kReminders});
}

}  // namespace
}  // namespace vantrel
