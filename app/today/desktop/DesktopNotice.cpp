#include "today/desktop/DesktopNotice.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QStringList>
#include <QVariantMap>

#include "today/AppId.h"

namespace vantrel {

void showNotice(const std::string& text) {
  if (::isatty(STDERR_FILENO)) return;
  int argc = 1;
  char name[] = "vantrel-today";
  char* argv[] = {name, nullptr};
  const QCoreApplication application(argc, argv);
  auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  const QString id = QString::fromLatin1(kApplicationId);
  auto call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.Notifications"),
                                             QStringLiteral("/org/freedesktop/Notifications"),
                                             QStringLiteral("org.freedesktop.Notifications"),
                                             QStringLiteral("Notify"));
  constexpr int kDesktopsOwnTime = -1;
  call << QStringLiteral("Vantrel") << 0u << id << QString::fromStdString(text) << QString()
       << QStringList() << QVariantMap{{QStringLiteral("desktop-entry"), id}} << kDesktopsOwnTime;
  // Sends the message now: the program exits next.
  constexpr int kNoticePatienceMilliseconds = 2000;
  bus.call(call, QDBus::Block, kNoticePatienceMilliseconds);
}

}  // namespace vantrel
