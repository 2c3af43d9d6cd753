#pragma once

#include <QAction>
#include <optional>
#include <vector>

#include "today/TodayWidget.h"
#include "today/WidgetHost.h"
#include "today/WindowState.h"
#include "today/card/CardWindow.h"

namespace vantrel {

/// The window that hosts the widget, and begins a new life of it when its content is out of date.
/// Main thread only.
class TodayWindow : public CardWindow {
  Q_OBJECT

 public:
  /// `measurer` is the one that is installed; it and `opener` must outlive the window. Without
  /// `dark` the desktop decides; unless `expanded`, the window opens as it was last time.
  TodayWindow(QtTextMeasurer& measurer, LinkOpener& opener, std::optional<bool> dark = {},
              bool expanded = false);

  /// Begins a new life, unless a row is being touched: the touch's end does it.
  void refresh() override;
  /// Shows all rows, or two.
  void setExpanded(bool expanded);
  /// Keeps the window's place and mode for the next time.
  void saveState() const;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void takeDesktopSettings() override;
  void textScaleChanged() override;

 private:
  /// The context menu of a row.
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
