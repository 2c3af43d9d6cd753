#pragma once

#include <memory>
#include <optional>

#include "today/CardWidget.h"
#include "today/CardWindow.h"
#include "today/LinkOpener.h"
#include "today/RefreshTriggers.h"
#include "today/StoreProbe.h"
#include "today/WidgetHost.h"
#include "today/WindowState.h"

namespace vantrel {

/// The window that hosts the widget and begins a new life of it whenever what is shown grows old.
/// Main thread.
class TodayWindow : public CardWindow {
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
  /// Shows all rows, or two.
  void setExpanded(bool expanded);
  /// Tells something on the card, until a link could be opened.
  void tell(const std::string& message);
  CardWidget& card() { return *card_; }

 signals:
  /// The state is saved; the program is to be started again in place.
  void restartRequested();

 protected:
  void closeEvent(QCloseEvent* event) override;
  int naturalHeight() const override { return card_->naturalHeight(); }
  void applySettings(const Theme& theme, const QColor& background, bool newTextScale) override;

 private:
  void connectTriggers();
  void showStoreProblem(const Error& problem);
  void openLink(const std::string& link);
  void showBar();
  void actOnBar();
  void saveState() const;

  LinkOpener& opener_;
  WindowState state_;
  StoreProbe probe_;
  RefreshTriggers triggers_;
  WidgetHost host_;
  CardWidget* card_;
  std::optional<CardContent::Bar> storeBar_;
  std::optional<CardContent::Bar> linkBar_;
  std::string linkToCopy_;
};

}  // namespace vantrel
