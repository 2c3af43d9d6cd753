#include "today/card/CardFonts.h"

#include "platform/qt/QtTextMeasurer.h"

namespace vantrel::cardfonts {

namespace {

QFont fontOf(const QtTextMeasurer& measurer, double size, QFont::Weight weight) {
  QFont font = measurer.fontFor(Font::systemFontOfSize(size));
  font.setWeight(weight);
  return font;
}

}  // namespace

QFont name(const QtTextMeasurer& measurer) {
  constexpr double kSpacing = 0.09;
  QFont font = fontOf(measurer, 12, QFont::DemiBold);
  font.setCapitalization(QFont::AllUppercase);
  font.setLetterSpacing(QFont::AbsoluteSpacing, font.pixelSize() * kSpacing);
  return font;
}

QFont action(const QtTextMeasurer& measurer) {
  return fontOf(measurer, 13, QFont::Medium);
}

QFont barText(const QtTextMeasurer& measurer) {
  return fontOf(measurer, 13, QFont::Normal);
}

QFont barAction(const QtTextMeasurer& measurer) {
  return fontOf(measurer, 13, QFont::DemiBold);
}

QFont text(CardContent::Text::Kind kind, const QtTextMeasurer& measurer) {
  using Kind = CardContent::Text::Kind;
  switch (kind) {
    case Kind::kTitle:
      return fontOf(measurer, 20, QFont::Bold);
    case Kind::kCaption:
      return fontOf(measurer, 12, QFont::Medium);
    case Kind::kZone:
      return fontOf(measurer, 13, QFont::Normal);
    case Kind::kWhen:
    case Kind::kDetail:
    case Kind::kPlace:
      break;
  }
  return fontOf(measurer, 15, QFont::Normal);
}

}  // namespace vantrel::cardfonts
