#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>
#include <filesystem>
#include <string>

#include "common/StoreWatcher.h"
#include "common/WallTimer.h"

namespace vantrel {

/// Everything that makes the shown plans old: midnight, suspend, a step of the clock, another
/// program's commit, a change of time zone. Main thread.
class RefreshTriggers : public QObject {
  Q_OBJECT

 public:
  /// `zoneFolder` is where the link "localtime" tells the device's time zone.
  explicit RefreshTriggers(const std::filesystem::path& store,
                           const std::filesystem::path& zoneFolder = "/etc",
                           QObject* parent = nullptr);

  /// Forgets changes of the store's content until now: opening a store writes to it. Another store
  /// in its place is still reported.
  void ignoreStoreChangesSoFar();

 signals:
  /// Another day or another present instant.
  void clockMoved();
  void storeChanged();
  /// Another file, or another device zone: what the process read once no longer holds.
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
