#include "today/CardWindow.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QShortcut>
#include <algorithm>

#include "platform/qt/QtTextMeasurer.h"
#include "today/AppIcon.h"
#include "today/CardLayout.h"

namespace vantrel {

namespace {

constexpr int kSmallestWidth = 300;

bool isDark(const QColor& color) {
  return color.lightnessF() < 0.5;
}

/// To screen readers a window, which a scroll area is not by itself.
QAccessibleInterface* makeAccessible(const QString& /*className*/, QObject* object) {
  auto* window = qobject_cast<CardWindow*>(object);
  return window ? new QAccessibleWidget(window, QAccessible::Window) : nullptr;
}

}  // namespace

CardWindow::CardWindow(QtTextMeasurer& measurer, std::optional<bool> dark)
    : measurer_(measurer), wantsDark_(dark) {
  QAccessible::installFactory(makeAccessible);
  setWindowIcon(appIcon());
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::NoFocus);
  setMinimumWidth(kSmallestWidth);
  resize(static_cast<int>(CardLayout::kUsualCardWidth + 2 * CardLayout::kMargin), 1);
  connect(&desktop_, &DesktopSettings::answered, this, [this] {
    isReady_ = true;
    emit ready();
  });
  connect(&desktop_, &DesktopSettings::changed, this, &CardWindow::takeDesktopSettings);
  connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
  connect(new QShortcut(QKeySequence::Quit, this), &QShortcut::activated, this, &QWidget::close);
}

void CardWindow::takeDesktopSettings() {
  const bool dark = wantsDark_.value_or(cardIsDark(desktop_.isDark()));
  const Theme theme = Theme::forStyle(dark, desktop_.wantsContrast());
  // The desktop's own colour, where it has taken part in the change of scheme.
  const QColor own = QGuiApplication::palette().color(QPalette::Window);
  // The measurer serves every window: another one may have set it before.
  const bool newTextScale = desktop_.textScale() != textScale_;
  textScale_ = desktop_.textScale();
  measurer_.setScale(textScale_);
  applySettings(theme, isDark(own) == dark ? own : theme.behind, newTextScale);
}

void CardWindow::fitHeight() {
  if (isMaximized() || isFullScreen()) return fitCard();
  int wanted = naturalHeight();
  if (const QScreen* place = screen()) wanted = std::min(wanted, place->availableSize().height());
  resize(width(), wanted);
  fitCard();
}

/// The card fills the window, and is scrolled where it needs more.
void CardWindow::fitCard() {
  if (!widget()) return;
  const QSize room = viewport()->size();
  widget()->resize(room.width(), std::max(room.height(), naturalHeight()));
}

void CardWindow::resizeEvent(QResizeEvent* event) {
  QScrollArea::resizeEvent(event);
  fitCard();
}

void CardWindow::changeEvent(QEvent* event) {
  QScrollArea::changeEvent(event);
  if (event->type() != QEvent::PaletteChange && event->type() != QEvent::FontChange) return;
  if (widget()) takeDesktopSettings();
}

}  // namespace vantrel
