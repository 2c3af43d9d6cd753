#pragma once

#include <QAction>
#include <optional>
#include <vector>

#include "today/TodayWidget.h"
#include "today/WidgetHost.h"
#include "today/WindowState.h"
#include "today/card/CardWindow.h"

namespace vantrel {

/// The window that hosts the widget. When the content is out of date, it replaces the widget with a
/// new one. Main thread only.
class TodayWindow : public CardWindow {
  Q_OBJECT

 public:
  /// `measurer` must be the installed TextMeasurer; it and `opener` must outlive the window.
  /// Without `dark`, the desktop's colour scheme is used. Unless `expanded`, the window opens in
  /// the mode in which it was closed.
  TodayWindow(QtTextMeasurer& measurer, LinkOpener& opener, std::optional<bool> dark = {},
              bool expanded = false);

  /// Replaces the widget with a new one; during a touch, when it ends.
  void refresh() override;
  /// Shows all rows or two rows.
  void setExpanded(bool expanded);
  /// Stores the window's position and mode for the next start.
  void saveState() const;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void takeDesktopSettings() override;
  void textScaleChanged() override;

 private:
  /// Shows the context menu of a row.
  struct RowMenu {
    QAction* copyCoordinates;
    QAction* showOnMap;
  };
  void addRowMenu(std::size_t row);
  void showLife();

  WindowState state_;
  WidgetHost host_;
  TodayWidget* widget_;
  std::vector<RowMenu> menus_;
};

}  // namespace vantrel
