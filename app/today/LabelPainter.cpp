#include "today/LabelPainter.h"

#include <QFont>
#include <QPainter>
#include <cmath>
#include <memory>

#include "platform/qt/QtParagraph.h"
#include "platform/qt/QtTextMeasurer.h"

namespace vantrel {

namespace {

/// Rounding of heights alone is no reason to shrink.
constexpr double kTolerance = 1;

using Paragraph = std::unique_ptr<QtParagraph>;

Paragraph paragraphAtSize(const Label& label, QFont font, int pixels, double width,
                          bool rightToLeft) {
  font.setPixelSize(pixels);
  auto paragraph = std::make_unique<QtParagraph>(label.text(), font, rightToLeft);
  paragraph->breakLines(width);
  return paragraph;
}

bool fits(const QtParagraph& paragraph, const Label& label, double height) {
  const bool fewLines =
      label.numberOfLines() <= 0 || paragraph.lineCount() <= label.numberOfLines();
  return fewLines && paragraph.height() <= height + kTolerance;
}

Paragraph fittingParagraph(const Label& label, const QSizeF& size, const QtTextMeasurer& measurer,
                           bool rightToLeft) {
  const QFont font = measurer.fontFor(label.font());
  const int full = font.pixelSize();
  const int smallest = label.adjustsFontSizeToFitWidth()
                           ? static_cast<int>(std::ceil(full * label.minimumScaleFactor()))
                           : full;
  Paragraph paragraph;
  for (int pixels = full; pixels >= smallest; --pixels) {
    paragraph = paragraphAtSize(label, font, pixels, size.width(), rightToLeft);
    if (fits(*paragraph, label, size.height())) return paragraph;
  }
  paragraph->breakLines(size.width(), label.numberOfLines());
  return paragraph;
}

}  // namespace

void paintLabel(QPainter& painter, const Label& label, const QRectF& frame, const QColor& color,
                const QtTextMeasurer& measurer, bool rightToLeft) {
  if (label.text().empty() || frame.isEmpty()) return;
  const Paragraph paragraph = fittingParagraph(label, frame.size(), measurer, rightToLeft);
  const double y = frame.top() + (frame.height() - paragraph->height()) / 2;
  painter.setPen(color);
  paragraph->draw(painter, {frame.left(), y},
                  rightToLeft ? QtParagraph::Alignment::kRight : QtParagraph::Alignment::kLeft);
}

}  // namespace vantrel
