#pragma once

#include <QScrollArea>
#include <QTimer>
#include <optional>
#include <string>

#include "base/Error.h"
#include "today/RefreshTriggers.h"
#include "today/card/CardWidget.h"
#include "today/desktop/DesktopSettings.h"
#include "today/desktop/LinkOpener.h"

namespace vantrel {

class QtTextMeasurer;

/// A window with one card: as high as the card, scrolled if the screen is smaller, in the desktop's
/// colours and text size, and up to date with the store. Main thread only.
class CardWindow : public QScrollArea {
  Q_OBJECT

 public:
  /// Whether `ready` was emitted.
  bool isReady() const { return isReady_; }
  /// Shows the current plans.
  virtual void refresh() = 0;
  /// Shows a message on the card until a link has been opened.
  void showMessage(const std::string& message);

 signals:
  /// The colours are known: a window shown from now on does not flash.
  void ready();
  /// Only a new process can show the current content.
  void restartRequested();

 protected:
  /// `measurer` must be the installed TextMeasurer; it and `opener` must outlive the window.
  /// Without `dark`, the desktop's colour scheme is used. Derived classes call setCard() last in
  /// the constructor.
  CardWindow(QtTextMeasurer& measurer, LinkOpener& opener, std::optional<bool> dark);

  void setCard(CardWidget& card);
  CardWidget& card() const { return *card_; }
  /// Opens a link. If that is impossible, shows the reason with a button to copy the link;
  /// `noHandler` is the key of the text if no application handles it.
  void openLink(const std::string& link, std::string_view noHandler);
  /// Copies a text and shows the message with the key `copied` for a few seconds.
  void copy(const std::string& text, std::string_view copied);
  void copyLink(const std::string& link) { copy(link, "today_link_copied"); }
  /// Shows the problem with the store and a button to solve it, in place of any other message.
  void setProblem(const std::optional<Error>& problem);
  void ignoreStoreChangesSoFar() { triggers_.ignoreStoreChangesSoFar(); }

  virtual void takeDesktopSettings();
  /// Lays out the texts of the card again.
  virtual void textScaleChanged() { card_->showContent(); }
  const DesktopSettings& desktop() const { return desktop_; }
  const QtTextMeasurer& measurer() const { return measurer_; }

  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void connectTriggers();
  void fitHeight();
  void fitCard();
  void showBar();
  void actOnBar();

  QtTextMeasurer& measurer_;
  LinkOpener& opener_;
  std::optional<bool> wantsDark_;
  DesktopSettings desktop_;
  RefreshTriggers triggers_;
  QTimer busyStore_;
  CardWidget* card_ = nullptr;
  std::optional<CardContent::Bar> problem_;
  std::optional<CardContent::Bar> notice_;
  std::string linkToCopy_;
  double textScale_ = 0;
  bool isReady_ = false;
};

}  // namespace vantrel
