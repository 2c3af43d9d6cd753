#include "today/desktop/ApplicationService.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

#include "today/AppId.h"

namespace vantrel {

namespace {

const QString kName = QString::fromLatin1(kApplicationId);
const QString kObjectPath =
    QLatin1Char('/') + QString(kName).replace(QLatin1Char('.'), QLatin1Char('/'));
const QString kApplicationInterface = QStringLiteral("org.freedesktop.Application");
const QString kStore = QStringLiteral("x-vantrel-store");
constexpr int kPatienceMilliseconds = 5000;

/// The platform data that let a window come to the front, and the environment variables that pass
/// them on.
constexpr struct {
  const char* key;
  const char* variable;
} kTokens[] = {{"activation-token", "XDG_ACTIVATION_TOKEN"},
               {"desktop-startup-id", "DESKTOP_STARTUP_ID"}};

}  // namespace

ApplicationService::ApplicationService(std::string store, Actions actions)
    : store_(std::move(store)), actions_(std::move(actions)) {}

ApplicationService::Role ApplicationService::start(const std::string& link, const QString& action) {
  auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return Role::kAlone;
  // Registers the object before the name, so that whoever sees the name can use it.
  bus.registerObject(kObjectPath, this, QDBusConnection::ExportAllSlots);
  if (bus.registerService(kName)) return Role::kFirst;
  bus.unregisterObject(kObjectPath);
  return askFirst(link, action) ? Role::kServed : Role::kAlone;
}

bool ApplicationService::ask(const QString& action) const {
  auto bus = QDBusConnection::sessionBus();
  return bus.isConnected() && bus.interface()->isServiceRegistered(kName) && askFirst({}, action);
}

bool ApplicationService::askFirst(const std::string& link, const QString& action) const {
  QVariantMap platformData{{kStore, QString::fromStdString(store_)}};
  for (const auto& [key, variable] : kTokens) {
    const QString token = qEnvironmentVariable(variable);
    if (!token.isEmpty()) platformData.insert(QLatin1String(key), token);
  }
  const QString method = !link.empty()       ? QStringLiteral("Open")
                         : !action.isEmpty() ? QStringLiteral("ActivateAction")
                                             : QStringLiteral("Activate");
  auto call = QDBusMessage::createMethodCall(kName, kObjectPath, kApplicationInterface, method);
  if (!link.empty()) call << QStringList(QString::fromStdString(link));
  if (link.empty() && !action.isEmpty()) call << action << QVariantList();
  call << platformData;
  const auto reply = QDBusConnection::sessionBus().call(call, QDBus::Block, kPatienceMilliseconds);
  return reply.type() == QDBusMessage::ReplyMessage;
}

/// Rejects requests for another store; takes over the permission to come to the front.
bool ApplicationService::accepts(const QVariantMap& platformData) {
  const auto store = platformData.constFind(kStore);
  if (store != platformData.constEnd() && store->toString().toStdString() != store_) {
    sendErrorReply(kName + QStringLiteral(".Error.OtherStore"),
                   QStringLiteral("this program shows the plans of another store"));
    return false;
  }
  for (const auto& [key, variable] : kTokens) {
    const auto token = platformData.value(QLatin1String(key)).toString();
    if (!token.isEmpty()) qputenv(variable, token.toUtf8());
  }
  return true;
}

void ApplicationService::Activate(const QVariantMap& platformData) {
  if (accepts(platformData)) actions_.activate();
}

void ApplicationService::Open(const QStringList& links, const QVariantMap& platformData) {
  if (!accepts(platformData)) return;
  for (const auto& link : links) {
    if (actions_.open(link.toStdString())) continue;
    sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("the link leads to no plan here"));
    return;
  }
}

void ApplicationService::ActivateAction(const QString& name, const QVariantList& /*parameters*/,
                                        const QVariantMap& platformData) {
  if (!accepts(platformData) || actions_.perform(name)) return;
  sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("there is no such action"));
}

}  // namespace vantrel
