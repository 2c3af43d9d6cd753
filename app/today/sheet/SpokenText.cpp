#include "today/sheet/SpokenText.h"

#include <QAccessible>

namespace vantrel {

SpokenText::SpokenText(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
  setAttribute(Qt::WA_TransparentForMouseEvents);
  hide();
}

void SpokenText::paintEvent(QPaintEvent* /*event*/) {}

void announce(QWidget* widget) {
  QAccessibleEvent event(widget, QAccessible::Alert);
  QAccessible::updateAccessibility(&event);
}

}  // namespace vantrel
