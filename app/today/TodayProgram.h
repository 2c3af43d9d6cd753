#pragma once

#include <QObject>
#include <QPointer>
#include <string>

#include "today/Options.h"
#include "today/TodayWindow.h"
#include "today/desktop/LinkOpener.h"
#include "today/reminders/ReminderService.h"
#include "today/sheet/PlanSheetWindow.h"

namespace vantrel {

/// The program with its windows: the widget's and a plan's, each made when it is first asked for.
/// It ends with the last of them. Main thread.
class TodayProgram : public QObject {
  Q_OBJECT

 public:
  /// `measurer` is the one that is installed, and must outlive the program.
  TodayProgram(QtTextMeasurer& measurer, const Options& options);
  ~TodayProgram() override;

  /// Shows the widget's window, in front of others where the desktop permits.
  void activate();
  /// The same for the sheet of a link's plan; false when it leads to none, which a window that is
  /// open tells.
  bool openLink(const std::string& link);
  /// "show-more", "show-less" and "refresh", as the window's controls do; "update-reminders" reads
  /// their setting again. False for others.
  bool perform(const QString& action);
  /// Whether reminders are on: a service then must not exit.
  bool hasReminders() const { return reminders_.isOn(); }

 signals:
  /// The program is to be started again in place, and to show the widget if there is a window of
  /// it, and the plan of this link (empty for none).
  void restartRequested(bool window, const std::string& link);

 private:
  TodayWindow& window();
  void makeOwn(CardWindow& window);
  void restart();
  void bringToFront(CardWindow& window);

  QtTextMeasurer& measurer_;
  Options options_;
  LinkOpener opener_;
  ReminderService reminders_;
  // Closed windows are no more: they follow nothing.
  QPointer<TodayWindow> window_;
  QPointer<PlanSheetWindow> sheet_;
};

}  // namespace vantrel
