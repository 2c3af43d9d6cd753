#pragma once

#include <QAbstractButton>

class QTouchEvent;

namespace vantrel {

/// An invisible button over a part of the card, for mouse, touch, Enter, Space and screen readers.
/// Main thread only.
class TouchButton : public QAbstractButton {
  Q_OBJECT

 public:
  explicit TouchButton(QWidget* parent);

  bool isHeld() const { return held_; }
  /// Whether the pointer is over the button.
  bool isHovered() const { return hovered_; }
  /// Whether the button has the keyboard focus and the user moved it by key. A newly opened window
  /// shows no focus ring.
  bool showsFocus() const { return hasFocus() && focusShown_; }

 signals:
  /// A touch begins, then ends or is cancelled: released outside, ended by the system, or by
  /// Escape.
  void touchBegan();
  void touchEnded();
  void touchCancelled();
  /// `showsFocus` or `isHovered` has changed.
  void lookChanged();

 protected:
  bool event(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void begin();
  void finish(bool inside);
  bool handleTouch(QTouchEvent& event);

  bool held_ = false;
  bool hovered_ = false;
  bool focusShown_ = false;
};

}  // namespace vantrel
