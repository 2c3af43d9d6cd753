#include "today/RefreshTriggers.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QSignalSpy>
#include <optional>

#include "support/Guards.h"
#include "today/Application.h"
#include "today/PrivateBus.h"

namespace vantrel {
namespace {

TEST(RefreshTriggers, TheReturnFromSuspendMovesTheClock) {
  test::needApplication();
  test::PrivateBus daemon;
  ASSERT_TRUE(daemon.start());
  const test::EnvironmentGuard address("DBUS_SYSTEM_BUS_ADDRESS", daemon.address().toStdString());
  auto bus = QDBusConnection::connectToBus(daemon.address(), "logind");
  ASSERT_TRUE(bus.registerService("org.freedesktop.login1"));
  const test::TemporaryDirectory folder;
  RefreshTriggers triggers(folder / "Vantrel.sqlite", folder.path());
  QSignalSpy moved(&triggers, &RefreshTriggers::clockMoved);
  const auto sleep = [&](bool begins) {
    auto signal = QDBusMessage::createSignal("/org/freedesktop/login1",
                                             "org.freedesktop.login1.Manager", "PrepareForSleep");
    signal << begins;
    bus.send(signal);
  };
  sleep(true);
  sleep(false);
  EXPECT_TRUE(test::waitFor([&] { return !moved.isEmpty(); }));
  EXPECT_EQ(moved.size(), 1) << "going to sleep is no reason";
}

TEST(RefreshTriggers, AnotherZoneOfTheDeviceIsTold) {
  test::needApplication();
  const test::EnvironmentGuard bus("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");
  const test::TemporaryDirectory folder;
  const test::TemporaryDirectory zones;
  std::optional<test::EnvironmentGuard> zone;
  zone.emplace("TZ", "Asia/Tokyo");
  RefreshTriggers triggers(folder / "Vantrel.sqlite", zones.path());
  QSignalSpy changed(&triggers, &RefreshTriggers::timeZoneChanged);
  QSignalSpy folderChanged(triggers.findChild<QFileSystemWatcher*>(),
                           &QFileSystemWatcher::directoryChanged);
  test::writeFile(zones / "hostname", "unrelated");
  ASSERT_TRUE(test::waitFor([&] { return !folderChanged.isEmpty(); }));
  EXPECT_TRUE(changed.isEmpty());
  zone.emplace("TZ", "America/New_York");
  test::writeFile(zones / "localtime", "link");
  EXPECT_TRUE(test::waitFor([&] { return !changed.isEmpty(); }));
}

TEST(RefreshTriggers, ABurstOfCommitsMakesOneRefreshAndOnesOwnNone) {
  test::needApplication();
  const test::EnvironmentGuard bus("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");
  const test::TemporaryDirectory folder;
  const test::TemporaryDirectory zones;
  RefreshTriggers triggers(folder / "Vantrel.sqlite", zones.path());
  QSignalSpy changed(&triggers, &RefreshTriggers::storeChanged);
  test::writeFile(folder / "Vantrel.sqlite", "own");
  triggers.ignoreStoreChangesSoFar();
  for (int i = 0; i < 200; ++i) {
    test::writeFile(folder / "Vantrel.sqlite-wal", std::string(static_cast<std::size_t>(i), 'x'));
  }
  EXPECT_TRUE(test::waitFor([&] { return !changed.isEmpty(); }));
  EXPECT_EQ(changed.size(), 1);
}

}  // namespace
}  // namespace vantrel
