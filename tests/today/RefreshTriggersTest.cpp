#include "today/RefreshTriggers.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <filesystem>
#include <optional>

#include "support/Guards.h"
#include "today/Application.h"

namespace vantrel {
namespace {

TEST(RefreshTriggers, TellOneBurstOnceAndOnlyAnotherZone) {
  test::needApplication();
  const test::EnvironmentGuard noBus("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");
  std::optional<test::EnvironmentGuard> zone;
  zone.emplace("TZ", "Asia/Tokyo");
  const test::TemporaryDirectory folder;
  const test::TemporaryDirectory zones;
  const auto store = folder / "Vantrel.sqlite";
  RefreshTriggers triggers(store, zones.path());
  QSignalSpy storeChanged(&triggers, &RefreshTriggers::storeChanged);
  QSignalSpy zoneChanged(&triggers, &RefreshTriggers::timeZoneChanged);
  QSignalSpy folderChanged(triggers.findChild<QFileSystemWatcher*>(),
                           &QFileSystemWatcher::directoryChanged);
  test::writeFile(store, "own");
  triggers.ignoreStoreChangesSoFar();
  test::writeFile(zones / "hostname", "unrelated");
  for (std::size_t size = 0; size < 200; ++size) {
    test::writeFile(store.string() + "-wal", std::string(size, 'x'));
  }
  EXPECT_TRUE(test::waitFor([&] { return !storeChanged.isEmpty() && !folderChanged.isEmpty(); }));
  EXPECT_EQ(storeChanged.size(), 1);
  EXPECT_TRUE(zoneChanged.isEmpty());

  QSignalSpy storeReplaced(&triggers, &RefreshTriggers::storeReplaced);
  test::writeFile(folder / "other", "other");
  std::filesystem::rename(folder / "other", store);
  triggers.ignoreStoreChangesSoFar();
  EXPECT_TRUE(test::waitFor([&] { return !storeReplaced.isEmpty(); }));

  zone.emplace("TZ", "America/New_York");
  test::writeFile(zones / "localtime", "link");
  EXPECT_TRUE(test::waitFor([&] { return !zoneChanged.isEmpty(); }));
}

}  // namespace
}  // namespace vantrel
