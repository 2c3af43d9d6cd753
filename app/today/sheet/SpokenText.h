#pragma once

#include <QLabel>

namespace vantrel {

/// A text for screen readers where a card draws the same text. Main thread.
class SpokenText : public QLabel {
 public:
  explicit SpokenText(QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// Has screen readers tell at once what is new about the widget.
void announce(QWidget* widget);

}  // namespace vantrel
