#include "today/desktop/DesktopSettings.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QFont>
#include <QFontInfo>
#include <QGuiApplication>
#include <QPalette>
#include <QTimer>
#include <algorithm>

namespace vantrel {

namespace {

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPortalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kSettingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString kAppearance = QStringLiteral("org.freedesktop.appearance");
const QString kGnome = QStringLiteral("org.gnome.desktop.interface");
const QString kColorScheme = QStringLiteral("color-scheme");
const QString kContrast = QStringLiteral("contrast");
const QString kReducedMotion = QStringLiteral("reduced-motion");
const QString kEnableAnimations = QStringLiteral("enable-animations");
const QString kTextScalingFactor = QStringLiteral("text-scaling-factor");

constexpr uint kPrefersDark = 1;
constexpr uint kPrefersLight = 2;
constexpr double kLargestTextScale = 4;

/// `Read` wraps its value in two variants, the signal in one.
QVariant unwrapped(QVariant value) {
  while (value.userType() == qMetaTypeId<QDBusVariant>()) {
    value = value.value<QDBusVariant>().variant();
  }
  return value;
}

template <typename T>
bool replace(T& setting, const T& value) {
  const bool differs = setting != value;
  setting = value;
  return differs;
}

}  // namespace

DesktopSettings::DesktopSettings(QObject* parent) : QObject(parent) {
  auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) {
    QTimer::singleShot(0, this, &DesktopSettings::answered);
    return;
  }
  bus.connect(kService, kPortalPath, kSettingsInterface, QStringLiteral("SettingChanged"), this,
              SLOT(settingChanged(QDBusMessage)));
  ask(kAppearance, kColorScheme);
  ask(kAppearance, kContrast);
  ask(kAppearance, kReducedMotion);
  ask(kGnome, kEnableAnimations);
  ask(kGnome, kTextScalingFactor);
}

bool DesktopSettings::isDark() const {
  return dark_.value_or(QGuiApplication::palette().color(QPalette::Window).lightnessF() < 0.5);
}

double DesktopSettings::textScale() const {
  // On X11 the screen's scale already contains the desktop's factor.
  const bool wayland = QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
  const double scale = textScaleForPointSize(QFontInfo(QGuiApplication::font()).pointSizeF());
  return std::clamp(scale * (wayland ? textScalingFactor_ : 1), 0.5, kLargestTextScale);
}

void DesktopSettings::ask(const QString& group, const QString& key) {
  auto call = QDBusMessage::createMethodCall(kService, kPortalPath, kSettingsInterface,
                                             QStringLiteral("Read"));
  call << group << key;
  auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, group, key] {
    watcher->deleteLater();
    const QDBusPendingReply<QDBusVariant> reply = *watcher;
    // An error means that the portal lacks the setting: its default stays.
    if (!reply.isError() && take(group, key, reply.value().variant())) emit changed();
    if (key == kColorScheme) emit answered();
  });
}

void DesktopSettings::settingChanged(const QDBusMessage& message) {
  const auto arguments = message.arguments();
  if (arguments.size() != 3) return;
  if (take(arguments[0].toString(), arguments[1].toString(), arguments[2])) emit changed();
}

bool DesktopSettings::take(const QString& group, const QString& key, QVariant value) {
  value = unwrapped(std::move(value));
  if (group == kAppearance && key == kColorScheme) {
    std::optional<bool> dark;
    if (value.toUInt() == kPrefersDark) dark = true;
    if (value.toUInt() == kPrefersLight) dark = false;
    return replace(dark_, dark);
  }
  if (group == kAppearance && key == kContrast) return replace(highContrast_, value.toUInt() == 1);
  if (group == kAppearance && key == kReducedMotion) {
    return replace(reducedMotion_, value.toUInt() == 1);
  }
  if (group == kGnome && key == kEnableAnimations) return replace(animations_, value.toBool());
  if (group == kGnome && key == kTextScalingFactor && value.toDouble() > 0) {
    return replace(textScalingFactor_, value.toDouble());
  }
  return false;
}

double textScaleForPointSize(double points) {
  constexpr double kSmallest = 9;
  constexpr double kLargest = 11;
  return points / std::clamp(points, kSmallest, kLargest);
}

}  // namespace vantrel
