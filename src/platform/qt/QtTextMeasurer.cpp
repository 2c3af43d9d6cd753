#include "platform/qt/QtTextMeasurer.h"

#include <QFont>
#include <QGuiApplication>
#include <algorithm>

#include "platform/qt/QtParagraph.h"

namespace vantrel {

QFont QtTextMeasurer::fontFor(const Font& font) const {
  QFont result = QGuiApplication::font();
  // Rounding to whole pixels would break lines differently at each scale of the screen.
  result.setHintingPreference(QFont::PreferNoHinting);
  result.setWeight(font.bold ? QFont::Bold : QFont::Normal);
  result.setItalic(false);
  result.setPixelSize(std::max(1, qRound(font.size * scale_)));
  return result;
}

Size QtTextMeasurer::sizeOfText(std::string_view text, const Font& font) const {
  const QtParagraph paragraph(text, fontFor(font));
  return {paragraph.width(), paragraph.firstLineHeight()};
}

Size QtTextMeasurer::boundingSizeOfText(std::string_view text, const Font& font,
                                        Size bounds) const {
  if (text.empty()) return {};
  QtParagraph paragraph(text, fontFor(font));
  paragraph.breakLines(bounds.width);
  return {std::min(paragraph.width(), bounds.width), std::min(paragraph.height(), bounds.height)};
}

}  // namespace vantrel
