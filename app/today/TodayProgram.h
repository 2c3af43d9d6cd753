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

/// Owns the widget's window and the window of a plan's sheet, and creates each on first use. The
/// program exits after the last is closed. Main thread only.
class TodayProgram : public QObject {
  Q_OBJECT

 public:
  /// `measurer` must be the installed TextMeasurer and outlive the program.
  TodayProgram(QtTextMeasurer& measurer, const Options& options);
  ~TodayProgram() override;

  /// Shows the widget's window, in front of other windows if the desktop permits it.
  void activate();
  /// Shows the plan of a link in the same way. Returns false if there is none; an open window then
  /// shows the reason.
  bool openLink(const std::string& link);
  /// Performs "show-more", "show-less", "refresh" or "update-reminders", which reads the setting of
  /// reminders again. Returns false for other actions.
  bool perform(const QString& action);
  /// Whether reminders are on; a service must then keep running.
  bool hasReminders() const { return reminders_.isOn(); }

 signals:
  /// Start the program again: with the widget's window if `window`, and with the plan of `link`
  /// unless it is empty.
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
