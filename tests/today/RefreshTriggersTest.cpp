#include "today/RefreshTriggers.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <optional>

#include "support/Guards.h"
#include "today/Application.h"

namespace vantrel {
namespace {

class RefreshTriggersTest : public testing::Test {
 protected:
  RefreshTriggersTest() { test::needApplication(); }

  const test::TemporaryDirectory folder_;
  const test::TemporaryDirectory zones_;
  const std::filesystem::path store_ = folder_ / "Vantrel.sqlite";
  const test::EnvironmentGuard noBus_{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent"};
};

TEST_F(RefreshTriggersTest, AnotherZoneOfTheDeviceIsTold) {
  std::optional<test::EnvironmentGuard> zone;
  zone.emplace("TZ", "Asia/Tokyo");
  RefreshTriggers triggers(store_, zones_.path());
  QSignalSpy changed(&triggers, &RefreshTriggers::timeZoneChanged);
  QSignalSpy folderChanged(triggers.findChild<QFileSystemWatcher*>(),
                           &QFileSystemWatcher::directoryChanged);
  test::writeFile(zones_ / "hostname", "unrelated");
  ASSERT_TRUE(test::waitFor([&] { return !folderChanged.isEmpty(); }));
  EXPECT_TRUE(changed.isEmpty());
  zone.emplace("TZ", "America/New_York");
  test::writeFile(zones_ / "localtime", "link");
  EXPECT_TRUE(test::waitFor([&] { return !changed.isEmpty(); }));
}

TEST_F(RefreshTriggersTest, ABurstOfCommitsMakesOneRefreshAndOnesOwnNone) {
  RefreshTriggers triggers(store_, zones_.path());
  QSignalSpy changed(&triggers, &RefreshTriggers::storeChanged);
  test::writeFile(store_, "own");
  triggers.ignoreStoreChangesSoFar();
  for (std::size_t size = 0; size < 200; ++size) {
    test::writeFile(store_.string() + "-wal", std::string(size, 'x'));
  }
  EXPECT_TRUE(test::waitFor([&] { return !changed.isEmpty(); }));
  EXPECT_EQ(changed.size(), 1);
}

}  // namespace
}  // namespace vantrel
