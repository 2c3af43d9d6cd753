#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>
#include <filesystem>
#include <string>

#include "common/StoreWatcher.h"
#include "common/WallTimer.h"

namespace vantrel {

/// Signals when the plans shown may be out of date: at midnight, after suspend, after a change of
/// the clock, the store or the time zone. Main thread only.
class RefreshTriggers : public QObject {
  Q_OBJECT

 public:
  /// `zoneFolder` contains the link "localtime" to the device's time zone.
  explicit RefreshTriggers(const std::filesystem::path& store,
                           const std::filesystem::path& zoneFolder = "/etc",
                           QObject* parent = nullptr);

  /// Ignores changes of the store's content so far: opening a store writes to it. A replaced store
  /// is still reported.
  void ignoreStoreChangesSoFar();

 signals:
  /// Midnight has passed, or the clock was set.
  void clockMoved();
  void storeChanged();
  /// Another store file, or another zone of the device: only a new process reads them.
  void storeReplaced();
  void timeZoneChanged();

 private slots:
  void prepareForSleep(bool begins);
  void compareTimeZone();

 private:
  void armForMidnight();
  void readTimer();
  void startStoreLook();
  void readStoreWatcher();
  void tellStoreChange();

  WallTimer midnight_;
  StoreWatcher storeWatcher_;
  QTimer storeLook_;
  QTimer storeSettles_;
  QFileSystemWatcher zoneFolderWatcher_;
  std::string zoneName_;
};

}  // namespace vantrel
