#include "today/RefreshTriggers.h"

#include <QDBusConnection>
#include <QSocketNotifier>

#include "base/Clock.h"
#include "common/Staleness.h"
#include "platform/text/TimeZone.h"

namespace vantrel {

RefreshTriggers::RefreshTriggers(const std::filesystem::path& store,
                                 const std::filesystem::path& zoneFolder, QObject* parent)
    : QObject(parent),
      storeWatcher_(store),
      zoneFolderWatcher_({QString::fromStdString(zoneFolder.string())}, this),
      zoneName_(TimeZone::defaultTimeZone().name()) {
  const auto follow = [this](int descriptor, auto reader) {
    if (descriptor < 0) return;
    auto* notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, reader);
  };
  follow(midnight_.fileDescriptor(), [this] { readTimer(); });
  follow(storeWatcher_.fileDescriptor(), [this] { readStoreWatcher(); });
  connect(&storeLook_, &QTimer::timeout, this, &RefreshTriggers::readStoreWatcher);
  startStoreLook();
  storeSettles_.setSingleShot(true);
  connect(&storeSettles_, &QTimer::timeout, this, &RefreshTriggers::tellStoreChange);
  connect(&zoneFolderWatcher_, &QFileSystemWatcher::directoryChanged, this,
          &RefreshTriggers::compareTimeZone);
  auto bus = QDBusConnection::systemBus();
  bus.connect(QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
              QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("PrepareForSleep"),
              this, SLOT(prepareForSleep(bool)));
  bus.connect(QStringLiteral("org.freedesktop.timedate1"),
              QStringLiteral("/org/freedesktop/timedate1"),
              QStringLiteral("org.freedesktop.DBus.Properties"),
              QStringLiteral("PropertiesChanged"), this, SLOT(compareTimeZone()));
  armForMidnight();
}

void RefreshTriggers::ignoreStoreChangesSoFar() {
  readStoreWatcher();
  if (storeWatcher_.pendingChange() == StoreWatcher::Change::kReplaced) return;
  storeWatcher_.takeChange();
  storeSettles_.stop();
}

void RefreshTriggers::armForMidnight() {
  midnight_.fireAt(systemInstant(nextMidnight(Clock::sharedClock().now())));
}

void RefreshTriggers::readTimer() {
  if (midnight_.read() == WallTimer::Event::kNone) return;
  armForMidnight();
  emit clockMoved();
}

void RefreshTriggers::prepareForSleep(bool begins) {
  if (begins) return;
  armForMidnight();
  emit clockMoved();
}

void RefreshTriggers::startStoreLook() {
  storeLook_.start(
      std::chrono::milliseconds(static_cast<std::int64_t>(storeWatcher_.pollingInterval() * 1000)));
}

void RefreshTriggers::readStoreWatcher() {
  const auto change = storeWatcher_.read();
  startStoreLook();
  if (change == StoreWatcher::Change::kNone) return;
  if (change == StoreWatcher::Change::kReplaced || !storeSettles_.isActive()) {
    storeSettles_.start(StoreWatcher::settlingTime(change));
  }
}

void RefreshTriggers::tellStoreChange() {
  if (storeWatcher_.takeChange() == StoreWatcher::Change::kReplaced) {
    emit storeReplaced();
  } else {
    emit storeChanged();
  }
}

void RefreshTriggers::compareTimeZone() {
  if (TimeZone::defaultTimeZone().name() == zoneName_) return;
  zoneName_ = TimeZone::defaultTimeZone().name();
  emit timeZoneChanged();
}

}  // namespace vantrel
