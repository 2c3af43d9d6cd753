#pragma once

#include <QScrollArea>
#include <memory>
#include <optional>

#include "today/CardWidget.h"
#include "today/DesktopSettings.h"
#include "today/LinkOpener.h"
#include "today/RefreshTriggers.h"
#include "today/StoreProbe.h"
#include "today/WidgetHost.h"
#include "today/WindowState.h"

namespace vantrel {

class QtTextMeasurer;

/// The window that hosts the widget and begins a new life of it whenever what is shown grows old.
/// Main thread.
class TodayWindow : public QScrollArea {
  Q_OBJECT

 public:
  struct Wishes {
    std::optional<bool> dark;      ///< Nothing follows the desktop.
    std::optional<bool> expanded;  ///< Nothing is as it was last time.
  };

  /// `measurer` is the one that is installed; it and `opener` must outlive the window.
  TodayWindow(QtTextMeasurer& measurer, LinkOpener& opener, const Wishes& wishes = {});

  /// Fetches anew, unless a row is being touched: the touch's end does it.
  void beginLife();
  /// What is shown can only be told anew by a new process, with this window's place and mode.
  void restart();
  CardWidget& card() { return *card_; }

 signals:
  /// The colours are known: what is shown from now on will not flash.
  void ready();
  /// The state is saved; the program is to be started again in place.
  void restartRequested();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void connectTriggers();
  void showStoreProblem(const Error& problem);
  void openLink(const std::string& link);
  void showBar();
  void actOnBar();
  void toggleMode();
  void takeDesktopSettings();
  void fitHeight();
  void fitCard();
  void saveState() const;

  QtTextMeasurer& measurer_;
  LinkOpener& opener_;
  Wishes wishes_;
  WindowState state_;
  DesktopSettings desktop_;
  StoreProbe probe_;
  RefreshTriggers triggers_;
  WidgetHost host_;
  CardWidget* card_;
  std::optional<CardContent::Bar> storeBar_;
  std::optional<CardContent::Bar> linkBar_;
  std::string linkToCopy_;
};

}  // namespace vantrel
