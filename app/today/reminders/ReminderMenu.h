#pragma once

#include <QMenu>

namespace vantrel {

/// The menu that switches reminders on and off. Main thread only.
class ReminderMenu : public QMenu {
  Q_OBJECT

 public:
  explicit ReminderMenu(QWidget* parent);

 signals:
  /// The stored lead times have changed.
  void changed();
  void failed(const std::string& message);

 private:
  void showSetting();
};

}  // namespace vantrel
