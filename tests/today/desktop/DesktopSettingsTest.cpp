#include "today/desktop/DesktopSettings.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QPalette>
#include <map>

#include "today/PrivateBus.h"
#include "today/TodayWindow.h"
#include "today/WindowTest.h"

namespace vantrel {
namespace {

using test::waitFor;

/// The settings portal as Debian 12 has it: `Read` only, its answer wrapped twice.
class OldPortal : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

 public:
  explicit OldPortal(const QDBusConnection& bus) : bus_(bus) {
    bus_.registerObject(kPath, this, QDBusConnection::ExportAllSlots);
    bus_.registerService("org.freedesktop.portal.Desktop");
  }
  void setColorScheme(uint scheme) {
    auto signal =
        QDBusMessage::createSignal(kPath, "org.freedesktop.portal.Settings", "SettingChanged");
    signal << "org.freedesktop.appearance"
           << "color-scheme" << QVariant::fromValue(QDBusVariant(scheme));
    bus_.send(signal);
  }
  std::map<QString, QVariant> settings;

 public slots:
  QDBusVariant Read(const QString& group, const QString& key, const QDBusMessage& message) {
    const auto found = settings.find(group + ' ' + key);
    if (found != settings.end()) {
      return QDBusVariant(QVariant::fromValue(QDBusVariant(found->second)));
    }
    message.setDelayedReply(true);
    bus_.send(message.createErrorReply("org.freedesktop.portal.Error.NotFound", "not found"));
    return {};
  }

 private:
  static constexpr auto kPath = "/org/freedesktop/portal/desktop";
  QDBusConnection bus_;
};

/// A desktop on a bus of its own.
class DesktopTest : public test::WindowTest {
 protected:
  const test::PrivateBus daemon_;
  const test::EnvironmentGuard onSessionBus_{"DBUS_SESSION_BUS_ADDRESS", daemon_.address()};
  const test::EnvironmentGuard onSystemBus_{"DBUS_SYSTEM_BUS_ADDRESS", daemon_.address()};
  QDBusConnection bus_ = daemon_.connection("desktop");
  OldPortal portal_{bus_};
};

TEST_F(DesktopTest, SettingsFollowThePortal) {
  portal_.settings = {{"org.freedesktop.appearance color-scheme", 1u},
                      {"org.freedesktop.appearance contrast", 1u},
                      {"org.gnome.desktop.interface enable-animations", false}};
  DesktopSettings desktop;
  EXPECT_FALSE(desktop.isDark()) << "the palette's, until the portal answers";
  ASSERT_TRUE(waitFor(
      [&] { return desktop.isDark() && desktop.wantsContrast() && desktop.reducesMotion(); }));
  portal_.setColorScheme(2);
  EXPECT_TRUE(waitFor([&] { return !desktop.isDark(); }));
  portal_.setColorScheme(1);
  EXPECT_TRUE(waitFor([&] { return desktop.isDark(); }));
  portal_.setColorScheme(7);
  EXPECT_TRUE(waitFor([&] { return !desktop.isDark(); })) << "unknown: no preference";
}

TEST_F(DesktopTest, AWindowFollowsThroughTheNight) {
  addPlan("Milky Way", "2026-07-15T21:40:00Z");
  addPlan("Sunrise", "2026-07-16T03:52:00Z");
  show(std::make_unique<TodayWindow>(*measurer_, opener_));
  const auto rows = [&] { return card().layoutOfCard().rows.size(); };
  const auto isDark = [&] {
    const auto header = card().layoutOfCard().header.center().toPoint();
    return card().grab().toImage().pixelColor(header).lightnessF() < 0.5;
  };
  ASSERT_EQ(rows(), 2U);
  EXPECT_FALSE(isDark());

  // The machine slept past midnight, and was carried to another zone.
  clock_.set(*dateFromIso8601String("2026-07-16T02:00:00Z"));
  ASSERT_TRUE(bus_.registerService("org.freedesktop.login1"));
  bus_.send(QDBusMessage::createSignal("/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                                       "PrepareForSleep")
            << false);
  EXPECT_TRUE(waitFor([&] { return rows() == 1; }));
  EXPECT_EQ(restarts_, 0);
  const test::EnvironmentGuard travelled("TZ", "Asia/Tokyo");
  ASSERT_TRUE(bus_.registerService("org.freedesktop.timedate1"));
  bus_.send(QDBusMessage::createSignal("/org/freedesktop/timedate1",
                                       "org.freedesktop.DBus.Properties", "PropertiesChanged"));
  EXPECT_TRUE(waitFor([&] { return restarts_ == 1; }));

  portal_.setColorScheme(1);
  EXPECT_TRUE(waitFor(isDark));
  EXPECT_EQ(rows(), 1U);
}

TEST(DesktopSettings, WithoutPortalThePaletteDecides) {
  const test::EnvironmentGuard none("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  test::needApplication();
  DesktopSettings desktop;
  bool answered = false;
  QObject::connect(&desktop, &DesktopSettings::answered, [&] { answered = true; });
  ASSERT_TRUE(waitFor([&] { return answered; }));
  EXPECT_FALSE(desktop.isDark());
  QGuiApplication::setPalette(QPalette(QColor(20, 20, 20)));
  EXPECT_TRUE(desktop.isDark());
}

TEST(DesktopSettings, FontsOfDeliveredDesktopsAreTheUsualSize) {
  for (const double points : {9.0, 10.0, 11.0}) EXPECT_EQ(textScaleForPointSize(points), 1);
  EXPECT_EQ(textScaleForPointSize(22), 2);
  EXPECT_EQ(textScaleForPointSize(4.5), 0.5);
}

}  // namespace
}  // namespace vantrel

#include "DesktopSettingsTest.moc"
