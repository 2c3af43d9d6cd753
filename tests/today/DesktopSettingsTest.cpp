#include "today/DesktopSettings.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QPalette>
#include <map>

#include "support/Guards.h"
#include "today/Application.h"
#include "today/PrivateBus.h"

namespace vantrel {
namespace {

constexpr auto kPath = "/org/freedesktop/portal/desktop";
constexpr auto kInterface = "org.freedesktop.portal.Settings";

/// The settings portal as Debian 12 has it: `Read` only, its answer wrapped twice.
class OldPortal : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

 public:
  std::map<QString, QVariant> settings;

 public slots:
  QDBusVariant Read(const QString& group, const QString& key, const QDBusMessage& message) {
    const auto found = settings.find(group + QLatin1Char(' ') + key);
    if (found != settings.end()) {
      return QDBusVariant(QVariant::fromValue(QDBusVariant(found->second)));
    }
    message.setDelayedReply(true);
    bus.send(message.createErrorReply(QStringLiteral("org.freedesktop.portal.Error.NotFound"),
                                      QStringLiteral("not found")));
    return {};
  }

 public:
  QDBusConnection bus{QString()};
};

TEST(DesktopSettings, FollowThePortal) {
  test::needApplication();
  test::PrivateBus daemon;
  ASSERT_TRUE(daemon.start());
  const test::EnvironmentGuard address("DBUS_SESSION_BUS_ADDRESS", daemon.address().toStdString());
  auto bus = QDBusConnection::connectToBus(daemon.address(), QStringLiteral("portal"));
  OldPortal portal;
  portal.bus = bus;
  portal.settings = {{"org.freedesktop.appearance color-scheme", 1u},
                     {"org.freedesktop.appearance contrast", 1u},
                     {"org.gnome.desktop.interface enable-animations", false}};
  ASSERT_TRUE(bus.registerObject(kPath, &portal, QDBusConnection::ExportAllSlots));
  ASSERT_TRUE(bus.registerService("org.freedesktop.portal.Desktop"));

  DesktopSettings desktop;
  EXPECT_FALSE(desktop.isDark()) << "the palette's, until the portal answers";
  ASSERT_TRUE(test::waitFor(
      [&] { return desktop.isDark() && desktop.wantsContrast() && desktop.reducesMotion(); }));

  const auto change = [&](uint scheme) {
    auto signal = QDBusMessage::createSignal(kPath, kInterface, "SettingChanged");
    signal << "org.freedesktop.appearance"
           << "color-scheme" << QVariant::fromValue(QDBusVariant(scheme));
    bus.send(signal);
  };
  change(2);
  EXPECT_TRUE(test::waitFor([&] { return !desktop.isDark(); }));
  change(1);
  EXPECT_TRUE(test::waitFor([&] { return desktop.isDark(); }));
  change(7);
  EXPECT_TRUE(test::waitFor([&] { return !desktop.isDark(); })) << "unknown: no preference";
}

TEST(DesktopSettings, WithoutPortalThePaletteDecides) {
  const test::EnvironmentGuard none("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  test::needApplication();
  DesktopSettings desktop;
  bool answered = false;
  QObject::connect(&desktop, &DesktopSettings::answered, [&] { answered = true; });
  ASSERT_TRUE(test::waitFor([&] { return answered; }));
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
