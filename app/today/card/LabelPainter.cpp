#include "today/card/LabelPainter.h"

#include <QFont>
#include <QPainter>
#include <cmath>

#include "platform/qt/QtParagraph.h"
#include "platform/qt/QtTextMeasurer.h"

namespace vantrel {

namespace {

/// Tolerance: differences by rounding do not shrink the text.
constexpr double kTolerance = 1;

bool fits(const QtParagraph& paragraph, const Label& label, double height) {
  const bool fewLines =
      label.numberOfLines() <= 0 || paragraph.lineCount() <= label.numberOfLines();
  return fewLines && paragraph.height() <= height + kTolerance;
}

QtParagraph fittingParagraph(const Label& label, const QSizeF& size, const QtTextMeasurer& measurer,
                             bool rightToLeft) {
  QFont font = measurer.fontFor(label.font());
  const int full = font.pixelSize();
  const int smallest = label.adjustsFontSizeToFitWidth()
                           ? static_cast<int>(std::ceil(full * label.minimumScaleFactor()))
                           : full;
  for (int pixels = full;; --pixels) {
    font.setPixelSize(pixels);
    QtParagraph paragraph(label.text(), font, rightToLeft);
    paragraph.breakLines(size.width());
    if (fits(paragraph, label, size.height())) return paragraph;
    if (pixels > smallest) continue;
    paragraph.breakLines(size.width(), label.numberOfLines());
    return paragraph;
  }
}

}  // namespace

void paintLabel(QPainter& painter, const Label& label, const QRectF& frame, const QColor& color,
                const QtTextMeasurer& measurer, bool rightToLeft) {
  if (label.text().empty() || frame.isEmpty()) return;
  const QtParagraph paragraph = fittingParagraph(label, frame.size(), measurer, rightToLeft);
  const double y = frame.top() + (frame.height() - paragraph.height()) / 2;
  painter.setPen(color);
  paragraph.draw(painter, {frame.left(), y});
}

}  // namespace vantrel
