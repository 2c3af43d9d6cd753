#include "platform/system/UserDefaults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <limits>
#include <thread>
#include <vector>

#include "support/Guards.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;

TEST(UserDefaults, ConvertsValues) {
  using List = PropertyList;
  UserDefaults defaults(std::nullopt);
  struct Case {
    PropertyList value;
    bool boolean;
    std::int64_t integer;
    double real;
  };
  constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
  const Case cases[] = {
      {{}, false, 0, 0},
      {List::boolean(true), true, 1, 1},
      {List::integer(-7), true, -7, -7},
      {List::real(-2.75), true, -2, -2.75},
      {List::real(0.25), true, 0, 0.25},
      {List::real(1e300), true, kMost, 1e300},
      {List::string("abc1"), false, 0, 0},
      {List::string("nan"), false, 0, 0},
      {List::string("YES"), true, 0, 0},
      {List::string("true"), true, 0, 0},
      {List::string("1"), true, 1, 1},
      {List::string("2"), false, 2, 2},
      {List::string(" -12.5 km"), false, -12, -12.5},
      {List::string("99999999999999999999"), false, kMost, 1e20},
      {List::array(), false, 0, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.boolean << " " << c.real);
    defaults.setObject(c.value, "key");
    EXPECT_EQ(defaults.boolForKey("key"), c.boolean);
    EXPECT_EQ(defaults.integerForKey("key"), c.integer);
    EXPECT_EQ(defaults.doubleForKey("key"), c.real);
    EXPECT_EQ(defaults.floatForKey("key"), static_cast<float>(c.real));
  }
}

TEST(UserDefaults, KeepsOtherKeys) {
  const test::TemporaryDirectory directory;
  const auto file = directory / "foreign.plist";
  fs::copy_file(test::testData("defaults/group.BeReal.plist"), file);
  const auto before = test::python(file, "sorted(p.items())");
  UserDefaults defaults(file);
  EXPECT_EQ(defaults.integerForKey("currentBadgeCounter"), 1);
  EXPECT_TRUE(defaults.boolForKey("environmentIsProd"));
  defaults.setBool(true, "~flag");
  defaults.setObject(PropertyList::date(Date(742069876.576084)), "~date");
  ASSERT_TRUE(defaults.synchronize());
  // Python prints True and 1 differently.
  EXPECT_EQ(test::python(file, "sorted(p.items())[:-2]"), before);
  EXPECT_EQ(test::python(file, "p['~flag'], p['~date']"), "True 2024-07-07 18:31:16.576084");
}

TEST(UserDefaults, MergesOnlyItsOwnChanges) {
  const test::TemporaryDirectory directory;
  const auto file = directory / "new" / "settings.plist";
  UserDefaults a(file);
  UserDefaults b(file);
  EXPECT_EQ(b.integerForKey("shared"), 0);
  EXPECT_FALSE(fs::exists(file.parent_path())) << "reading creates nothing";

  a.setInteger(1, "shared");
  a.setInteger(1, "a");
  EXPECT_EQ(b.integerForKey("shared"), 0);
  ASSERT_TRUE(a.synchronize());
  EXPECT_EQ(b.integerForKey("shared"), 1);

  b.setInteger(2, "shared");
  b.removeObjectForKey("a");
  a.setInteger(3, "a2");
  ASSERT_TRUE(a.synchronize());
  EXPECT_EQ(b.integerForKey("shared"), 2);
  EXPECT_FALSE(b.objectForKey("a"));
  EXPECT_EQ(b.integerForKey("a2"), 3);
  ASSERT_TRUE(b.synchronize());
  EXPECT_EQ(test::python(file, "sorted(p.items())"), "[('a2', 3), ('shared', 2)]");
  EXPECT_EQ(a.dictionaryRepresentation().count(), 2u);
  EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(UserDefaults, ReportsAndKeepsDamagedFiles) {
  const auto foreign = test::readFile(test::testData("defaults/group.BeReal.plist"));
  const std::string contents[] = {"", "latitude = 41", foreign.substr(0, foreign.size() - 9),
                                  "<plist version=\"1.0\"><array/></plist>"};
  const test::TemporaryDirectory directory;
  const auto file = directory / "settings.plist";
  for (const auto& content : contents) {
    SCOPED_TRACE(content);
    test::LogCapture log;
    test::writeFile(file, content);
    UserDefaults defaults(file);
    ASSERT_FALSE(defaults.checkReadable());
    EXPECT_EQ(defaults.checkReadable().error().domain, "PropertyList");
    EXPECT_EQ(defaults.dictionaryRepresentation().count(), 0u);
    ASSERT_TRUE(defaults.synchronize());
    EXPECT_EQ(test::readFile(file), content);
    EXPECT_EQ(log.text(), "");

    defaults.setInteger(1, "key");
    ASSERT_TRUE(defaults.synchronize());
    EXPECT_TRUE(defaults.checkReadable());
    EXPECT_EQ(UserDefaults(file).integerForKey("key"), 1);
    EXPECT_THAT(log.text(), testing::HasSubstr("moved to settings.plist.damaged"));
  }
  EXPECT_EQ(test::readFile(directory / "settings.plist.damaged-3"), contents[2]);
}

TEST(UserDefaults, RetriesFailedWrites) {
  const test::TemporaryDirectory directory;
  const auto file = directory / "folder" / "settings.plist";
  test::writeFile(directory / "folder", "in the way");
  UserDefaults defaults(file);
  defaults.setInteger(1, "key");
  const auto failed = defaults.synchronize();
  ASSERT_FALSE(failed);
  EXPECT_EQ(failed.error().domain, "POSIX");
  EXPECT_EQ(defaults.integerForKey("key"), 1);
  fs::remove(directory / "folder");
  ASSERT_TRUE(defaults.synchronize());
  EXPECT_EQ(UserDefaults(file).integerForKey("key"), 1);
}

TEST(UserDefaults, IsThreadSafe) {
  const test::TemporaryDirectory directory;
  UserDefaults defaults(directory / "settings.plist");
  constexpr int kThreads = 4;
  constexpr int kTimes = 50;
  std::atomic<int> lost = 0;
  const auto work = [&](int number) {
    const auto key = std::to_string(number);
    for (int i = 1; i <= kTimes; ++i) {
      defaults.setInteger(i, key);
      if (i % 5 == 0) (void)defaults.synchronize();
      const auto values = defaults.dictionaryRepresentation();
      if (values[key].asInteger() != i || defaults.integerForKey(key) != i) ++lost;
    }
  };
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
  }
  EXPECT_EQ(lost, 0);
  EXPECT_EQ(test::python(directory / "settings.plist", "sum(p.values())"),
            std::to_string(kThreads * kTimes));
}

/// Uses a folder in memory if possible: these tests synchronise often.
class UserDefaultsOfProcesses : public ::testing::Test {
 protected:
  UserDefaultsOfProcesses()
      : temporary_("TMPDIR", fs::exists("/dev/shm") ? "/dev/shm" : fs::temp_directory_path()) {}
  fs::path file() const { return directory_ / "settings.plist"; }

 private:
  test::EnvironmentGuard temporary_;
  test::TemporaryDirectory directory_;
};

/// Sets keys in turn and reads each one back after the next write. Returns 0 if no value was lost.
int writeAndCheck(const fs::path& file, int writer, int times) {
  constexpr int kKeys = 50;
  UserDefaults defaults(file);
  const auto key = [writer](int i) {
    return std::to_string(writer) + "." + std::to_string(i % kKeys);
  };
  for (int i = 1; i <= times; ++i) {
    defaults.setInteger(i, key(i));
    if (!defaults.synchronize()) return 2;
    if (defaults.integerForKey(key(i - 1)) != i - 1) return 1;
  }
  return 0;
}

TEST_F(UserDefaultsOfProcesses, WritersOfDifferentKeysLoseNothing) {
  constexpr int kTimes = 10000;
  const pid_t other = ::fork();
  ASSERT_GE(other, 0);
  if (other == 0) ::_exit(writeAndCheck(file(), 2, kTimes));
  EXPECT_EQ(writeAndCheck(file(), 1, kTimes), 0);
  int status = -1;
  ::waitpid(other, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(test::python(file(), "len(p), sum(p.values())"),
            "100 " + std::to_string(2 * 50 * (2 * kTimes - 49) / 2));
}

TEST_F(UserDefaultsOfProcesses, AKilledWriterLeavesTheOldFileOrTheNew) {
  UserDefaults defaults(file());
  defaults.setObject(PropertyList::data(Data(100000)), "ballast");
  ASSERT_TRUE(defaults.synchronize());
  const pid_t parent = ::getpid();
  for (int round = 0; round < 40; ++round) {
    const auto start = defaults.integerForKey("first");
    const pid_t writer = ::fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
      UserDefaults own(file());
      for (auto i = start + 1; ::getppid() == parent; ++i) {
        own.setInteger(i, "first");
        own.setInteger(i, "last");
        (void)own.synchronize();
      }
      ::_exit(0);
    }
    // Each round kills the writer at a different point.
    int reads = 0;
    bool readable = true;
    while (readable && (defaults.integerForKey("last") <= start || ++reads < round * 7)) {
      readable = defaults.checkReadable().has_value();
    }
    ::kill(writer, SIGKILL);
    ::waitpid(writer, nullptr, 0);
    ASSERT_TRUE(readable);
    const auto values = defaults.dictionaryRepresentation();
    EXPECT_EQ(values["first"].asInteger(), values["last"].asInteger());
    EXPECT_EQ(values["ballast"].asData()->size(), 100000u);
  }
  defaults.setInteger(-1, "last");
  EXPECT_TRUE(defaults.synchronize());
}

}  // namespace
}  // namespace vantrel
