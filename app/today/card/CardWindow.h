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

/// A window that shows one card: as high as the card needs, scrolled where the screen has less
/// room, in the desktop's colours and text size, and as old as the store. Main thread.
class CardWindow : public QScrollArea {
  Q_OBJECT

 public:
  /// Whether `ready` was told.
  bool isReady() const { return isReady_; }
  /// Shows what the store holds now.
  virtual void refresh() = 0;
  /// Tells something on the card, until a link could be opened.
  void tell(const std::string& message);

 signals:
  /// The colours are known: what is shown from now on will not flash.
  void ready();
  /// What is to be shown can only be told anew by a new process.
  void restartRequested();

 protected:
  /// `measurer` is the one that is installed; it and `opener` must outlive the window. Without
  /// `dark` the desktop decides. The derived window sets its card last.
  CardWindow(QtTextMeasurer& measurer, LinkOpener& opener, std::optional<bool> dark);

  void setCard(CardWidget& card);
  CardWidget& card() const { return *card_; }
  /// Opens a link. If that is impossible, shows the reason with a button to copy the link;
  /// `noHandler` is the key of the text if no application handles it.
  void openLink(const std::string& link, std::string_view noHandler);
  /// Copies a text and shows the message with the key `copied` for a few seconds.
  void copy(const std::string& text, std::string_view copied);
  void copyLink(const std::string& link) { copy(link, "today_link_copied"); }
  /// Shows what is wrong with the store, with one way out of it, instead of all that is told.
  void setProblem(const std::optional<Error>& problem);
  void ignoreStoreChangesSoFar() { triggers_.ignoreStoreChangesSoFar(); }

  virtual void takeDesktopSettings();
  /// Sets the texts of the card anew.
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
