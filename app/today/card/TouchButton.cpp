#include "today/card/TouchButton.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QTouchEvent>

namespace vantrel {

namespace {

bool isActivationKey(int key) {
  return key == Qt::Key_Space || key == Qt::Key_Select || key == Qt::Key_Return ||
         key == Qt::Key_Enter;
}

}  // namespace

TouchButton::TouchButton(QWidget* parent) : QAbstractButton(parent) {
  setAttribute(Qt::WA_AcceptTouchEvents);
  // The ring shows where the keyboard is; a click does not move the focus.
  setFocusPolicy(Qt::TabFocus);
  setCursor(Qt::PointingHandCursor);
  // A press by a screen reader is a click without a touch before it.
  connect(this, &QAbstractButton::clicked, this, [this] {
    begin();
    finish(true);
  });
}

void TouchButton::begin() {
  if (held_) return;
  held_ = true;
  emit touchBegan();
}

void TouchButton::finish(bool inside) {
  if (!held_) return;
  held_ = false;
  if (inside) {
    emit touchEnded();
  } else {
    emit touchCancelled();
  }
}

bool TouchButton::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
      return handleTouch(static_cast<QTouchEvent&>(*event));
    case QEvent::WindowDeactivate:
      finish(false);
      break;
    default:
      break;
  }
  return QAbstractButton::event(event);
}

bool TouchButton::handleTouch(QTouchEvent& event) {
  // Only the first finger counts.
  const QPointF position = event.points().isEmpty() ? QPointF() : event.points().first().position();
  if (event.type() == QEvent::TouchBegin) begin();
  if (event.type() == QEvent::TouchEnd) finish(QRectF(rect()).contains(position));
  if (event.type() == QEvent::TouchCancel) finish(false);
  event.accept();
  return true;
}

void TouchButton::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) {
    begin();
  } else {
    event->ignore();
  }
}

void TouchButton::mouseMoveEvent(QMouseEvent* event) {
  event->accept();
}

void TouchButton::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) finish(QRectF(rect()).contains(event->position()));
}

void TouchButton::keyPressEvent(QKeyEvent* event) {
  if (!focusShown_) {
    focusShown_ = true;
    emit lookChanged();
  }
  if (isActivationKey(event->key())) {
    if (!event->isAutoRepeat()) begin();
  } else if (event->key() == Qt::Key_Escape && held_) {
    finish(false);
  } else {
    QAbstractButton::keyPressEvent(event);
  }
}

void TouchButton::keyReleaseEvent(QKeyEvent* event) {
  if (!isActivationKey(event->key())) return QAbstractButton::keyReleaseEvent(event);
  if (!event->isAutoRepeat()) finish(true);
}

void TouchButton::enterEvent(QEnterEvent* event) {
  QAbstractButton::enterEvent(event);
  hovered_ = true;
  emit lookChanged();
}

void TouchButton::leaveEvent(QEvent* event) {
  QAbstractButton::leaveEvent(event);
  hovered_ = false;
  emit lookChanged();
}

void TouchButton::focusInEvent(QFocusEvent* event) {
  QAbstractButton::focusInEvent(event);
  // After a return to the window, the ring is as before.
  if (event->reason() != Qt::ActiveWindowFocusReason) {
    focusShown_ = event->reason() == Qt::TabFocusReason ||
                  event->reason() == Qt::BacktabFocusReason ||
                  event->reason() == Qt::ShortcutFocusReason;
  }
  emit lookChanged();
}

void TouchButton::focusOutEvent(QFocusEvent* event) {
  QAbstractButton::focusOutEvent(event);
  finish(false);
  emit lookChanged();
}

void TouchButton::hideEvent(QHideEvent* event) {
  QAbstractButton::hideEvent(event);
  hovered_ = false;
  finish(false);
}

void TouchButton::paintEvent(QPaintEvent* /*event*/) {}

}  // namespace vantrel
