#pragma once

#include <QScrollArea>
#include <optional>

#include "today/DesktopSettings.h"
#include "today/Theme.h"

namespace vantrel {

class QtTextMeasurer;

/// A window that shows one card: as high as the card needs, scrolled where the screen has less
/// room, in the desktop's colours and text size. Main thread.
class CardWindow : public QScrollArea {
  Q_OBJECT

 public:
  /// Whether `ready` was told.
  bool isReady() const { return isReady_; }

 signals:
  /// The colours are known: what is shown from now on will not flash.
  void ready();

 protected:
  /// `measurer` is the one that is installed, and must outlive the window. Without `dark` the
  /// desktop decides. The derived window sets its card as the widget, then takes the settings.
  CardWindow(QtTextMeasurer& measurer, std::optional<bool> dark);

  /// What the card needs in the end, its surroundings included.
  virtual int naturalHeight() const = 0;
  /// Draws the card anew with these; `newTextScale` when texts have another size than before.
  virtual void applySettings(const Theme& theme, const QColor& background, bool newTextScale) = 0;

  void takeDesktopSettings();
  void fitHeight();
  const DesktopSettings& desktop() const { return desktop_; }
  QtTextMeasurer& measurer() const { return measurer_; }

  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void fitCard();

  QtTextMeasurer& measurer_;
  std::optional<bool> wantsDark_;
  DesktopSettings desktop_;
  double textScale_ = 0;
  bool isReady_ = false;
};

}  // namespace vantrel
