#pragma once

#include <QMap>
#include <QObject>
#include <QStringList>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/WallTimer.h"
#include "store/Planning.h"
#include "today/RefreshTriggers.h"
#include "today/reminders/ReminderLog.h"

namespace vantrel {

/// Shows notifications before plans (org.freedesktop.Notifications) while it exists. Follows the
/// store, the wall clock, suspends and the time zone. Does nothing without lead times; logs one
/// line if there is no notification server. Main thread only.
class ReminderService : public QObject {
  Q_OBJECT

 public:
  /// Shows the plan of a link: the notification's action.
  using PlanShower = std::function<void(const std::string& link)>;

  explicit ReminderService(PlanShower showPlan);
  /// Reads the setting again and shows the reminders that are due.
  void reload();
  bool isOn() const { return !leadTimes_.empty(); }

 signals:
  /// The store was replaced or the time zone changed: only a new process reads them.
  void restartRequested();

 private slots:
  void invokeAction(uint notification, const QString& action);
  void forgetNotification(uint notification);

 private:
  void startFollowing();
  void update();
  std::vector<std::shared_ptr<Planning>> comingPlans(Date now) const;
  void show(const Planning& plan);
  void notify(const QString& summary, const QString& body, const std::string& link);
  void logFailure(const QString& reason);

  PlanShower showPlan_;
  std::vector<std::chrono::minutes> leadTimes_;
  std::optional<ReminderLog> log_;
  WallTimer timer_;
  std::unique_ptr<RefreshTriggers> triggers_;  ///< Null until reminders are on.
  QMap<uint, std::string> links_;              ///< Of the notifications that are shown.
  bool hasLoggedFailure_ = false;
};

}  // namespace vantrel
