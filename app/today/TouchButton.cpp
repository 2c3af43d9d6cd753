#include "today/TouchButton.h"

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
  // The ring tells where the keyboard is; a click does not move the keyboard.
  setFocusPolicy(Qt::TabFocus);
  setCursor(Qt::PointingHandCursor);
  // A screen reader's press comes as a click without a touch before it.
  connect(this, &QAbstractButton::clicked, this, [this] {
    const QPointF middle = QRectF(rect()).center();
    begin(middle);
    finish(middle);
  });
}

void TouchButton::begin(QPointF position) {
  if (held_) return;
  held_ = true;
  emit touchBegan(position);
}

void TouchButton::finish(QPointF position) {
  if (!held_) return;
  held_ = false;
  if (QRectF(rect()).contains(position)) {
    emit touchEnded(position);
  } else {
    emit touchCancelled(position);
  }
}

void TouchButton::cancel() {
  if (!held_) return;
  held_ = false;
  emit touchCancelled(QRectF(rect()).center());
}

bool TouchButton::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
      return handleTouch(static_cast<QTouchEvent&>(*event));
    case QEvent::WindowDeactivate:
      cancel();
      break;
    default:
      break;
  }
  return QAbstractButton::event(event);
}

bool TouchButton::handleTouch(QTouchEvent& event) {
  // Further fingers do not count.
  const QPointF position = event.points().isEmpty() ? QPointF() : event.points().first().position();
  if (event.type() == QEvent::TouchBegin) begin(position);
  if (event.type() == QEvent::TouchEnd) finish(position);
  if (event.type() == QEvent::TouchCancel) cancel();
  event.accept();
  return true;
}

void TouchButton::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) {
    begin(event->position());
  } else {
    event->ignore();
  }
}

void TouchButton::mouseMoveEvent(QMouseEvent* event) {
  event->accept();
}

void TouchButton::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) finish(event->position());
}

void TouchButton::keyPressEvent(QKeyEvent* event) {
  if (!focusShown_) {
    focusShown_ = true;
    emit focusChanged();
  }
  if (isActivationKey(event->key())) {
    if (!event->isAutoRepeat()) begin(QRectF(rect()).center());
  } else if (event->key() == Qt::Key_Escape && held_) {
    cancel();
  } else {
    QAbstractButton::keyPressEvent(event);
  }
}

void TouchButton::keyReleaseEvent(QKeyEvent* event) {
  if (!isActivationKey(event->key())) return QAbstractButton::keyReleaseEvent(event);
  if (!event->isAutoRepeat()) finish(QRectF(rect()).center());
}

void TouchButton::focusInEvent(QFocusEvent* event) {
  QAbstractButton::focusInEvent(event);
  // Coming back to the window, the ring is as it was.
  if (event->reason() != Qt::ActiveWindowFocusReason) {
    focusShown_ = event->reason() == Qt::TabFocusReason ||
                  event->reason() == Qt::BacktabFocusReason ||
                  event->reason() == Qt::ShortcutFocusReason;
  }
  emit focusChanged();
}

void TouchButton::focusOutEvent(QFocusEvent* event) {
  QAbstractButton::focusOutEvent(event);
  cancel();
  emit focusChanged();
}

void TouchButton::hideEvent(QHideEvent* event) {
  QAbstractButton::hideEvent(event);
  cancel();
}

void TouchButton::paintEvent(QPaintEvent* /*event*/) {}

}  // namespace vantrel
