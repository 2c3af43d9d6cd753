#pragma once

#include <QLabel>

namespace vantrel {

/// A text for screen readers, over the place where the card draws it. Main thread only.
class SpokenText : public QLabel {
 public:
  explicit SpokenText(QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// Makes screen readers announce the new text of the widget.
void announce(QWidget* widget);

}  // namespace vantrel
