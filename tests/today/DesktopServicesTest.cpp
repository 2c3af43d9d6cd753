#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QProcess>

#include "base/Iso8601.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/QtTextMeasurer.h"
#include "support/Guards.h"
#include "support/TestStore.h"
#include "today/Application.h"
#include "today/PrivateBus.h"
#include "today/RecordingOpener.h"
#include "today/TodayWindow.h"
#include "today/TouchButton.h"

namespace vantrel {
namespace {

/// A service that python3-dbusmock plays: its names and signatures are not ours.
class MockService {
 public:
  MockService(const QDBusConnection& bus, const QStringList& arguments, QString name, QString path)
      : bus_(bus), name_(std::move(name)), path_(std::move(path)) {
    process_.start("/usr/bin/python3", QStringList{"-m", "dbusmock"} + arguments);
  }
  ~MockService() {
    process_.kill();
    process_.waitForFinished();
  }
  bool waitUntilThere() {
    return test::waitFor([&] { return bus_.interface()->isServiceRegistered(name_).value(); });
  }
  bool call(const QString& method, const QVariantList& arguments) {
    auto message =
        QDBusMessage::createMethodCall(name_, path_, "org.freedesktop.DBus.Mock", method);
    message.setArguments(arguments);
    return bus_.call(message).type() == QDBusMessage::ReplyMessage;
  }
  bool emitSignal(const QString& interface, const QString& signal, const QString& signature,
                  const QVariantList& arguments) {
    return call("EmitSignal", {interface, signal, signature, arguments});
  }

 private:
  QDBusConnection bus_;
  QString name_;
  QString path_;
  QProcess process_;
};

TEST(DesktopServices, AWindowFollowsTheDesktopThroughTheNight) {
  test::needApplication();
  test::PrivateBus daemon;
  ASSERT_TRUE(daemon.start());
  const std::string address = daemon.address().toStdString();
  const test::EnvironmentGuard sessionBus("DBUS_SESSION_BUS_ADDRESS", address);
  const test::EnvironmentGuard systemBus("DBUS_SYSTEM_BUS_ADDRESS", address);
  const auto bus = QDBusConnection::connectToBus(daemon.address(), "mocks");
  MockService login(bus, {"--system", "--template", "logind"}, "org.freedesktop.login1",
                    "/org/freedesktop/login1");
  const QString settings = "org.freedesktop.portal.Settings";
  MockService portal(
      bus,
      {"--session", "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop", settings},
      "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop");
  ASSERT_TRUE(login.waitUntilThere() && portal.waitUntilThere());
  // As the portal of Debian 12: a variant within the variant.
  ASSERT_TRUE(portal.call("AddMethod",
                          {settings, "Read", "ss", "v", "ret = dbus.UInt32(2, variant_level=1)"}));

  const test::TemporaryDirectory home;
  const test::EnvironmentGuard group("VANTREL_GROUP_CONTAINER", home.path().string());
  const test::EnvironmentGuard state("XDG_STATE_HOME", (home / "state").string());
  const test::EnvironmentGuard zone("TZ", "Europe/Madrid");
  test::FakeClock clock(*dateFromIso8601String("2026-07-15T08:00:00Z"));
  {
    test::OpenStore store(home / "Vantrel.sqlite");
    for (const char* date : {"2026-07-15T21:40:00Z", "2026-07-16T03:52:00Z"}) {
      store.insertPlan(date, dateFromIso8601String(date)->timeIntervalSinceReferenceDate());
    }
    ASSERT_TRUE(store.context.save());
  }
  const auto measurer = std::make_shared<QtTextMeasurer>();
  TextMeasurer::install(measurer);
  MainQueue::install(std::make_shared<QtMainQueue>());
  test::RecordingOpener opener;
  TodayWindow window(*measurer, opener);
  window.show();
  const auto rows = [&] { return window.card().layoutOfCard().rows.size(); };
  const auto isDark = [&] {
    const auto picture = window.card().grab().toImage();
    return picture.pixelColor(window.card().layoutOfCard().header.center().toPoint()).lightnessF() <
           0.5;
  };
  ASSERT_EQ(rows(), 2U);
  EXPECT_FALSE(isDark());

  // The machine slept past midnight.
  clock.set(*dateFromIso8601String("2026-07-16T02:00:00Z"));
  ASSERT_TRUE(login.emitSignal("org.freedesktop.login1.Manager", "PrepareForSleep", "b", {false}));
  EXPECT_TRUE(test::waitFor([&] { return rows() == 1; }));

  ASSERT_TRUE(portal.call("EmitSignal", {settings, "SettingChanged", "ssv",
                                         QVariantList{"org.freedesktop.appearance", "color-scheme",
                                                      QVariant::fromValue(1u)}}));
  EXPECT_TRUE(test::waitFor(isDark));
  EXPECT_EQ(rows(), 1U);
}

}  // namespace
}  // namespace vantrel
