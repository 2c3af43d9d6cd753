#include "today/PlanSheetLayout.h"

#include <QFont>
#include <algorithm>
#include <cmath>

#include "platform/qt/QtParagraph.h"
#include "platform/qt/QtTextMeasurer.h"

namespace vantrel {

namespace {

using Kind = PlanSheetContent::Kind;

constexpr double kTextLeft = 37;
constexpr double kTextRight = 24;
constexpr double kTopAir = 14;
constexpr double kBottomAir = 20;
constexpr double kShapeSide = 8;
constexpr double kShapeAir = 4;

/// What is free above an item that is not the first.
double gapAbove(Kind kind) {
  switch (kind) {
    case Kind::kCaption:
      return 14;
    case Kind::kText:
      return 6;
    default:
      return 2;
  }
}

}  // namespace

QFont sheetFont(Kind kind, const QtTextMeasurer& measurer) {
  switch (kind) {
    case Kind::kTitle:
      return measurer.fontFor(Font::boldSystemFontOfSize(20));
    case Kind::kCaption: {
      QFont font = measurer.fontFor(Font::systemFontOfSize(12));
      font.setWeight(QFont::Medium);
      return font;
    }
    case Kind::kZone:
      return measurer.fontFor(Font::systemFontOfSize(13));
    case Kind::kText:
    case Kind::kDetail:
    case Kind::kPlace:
      break;
  }
  return measurer.fontFor(Font::systemFontOfSize(15));
}

PlanSheetLayout PlanSheetLayout::make(const PlanSheetContent& content, double pictureWidth,
                                      const QtTextMeasurer& measurer) {
  PlanSheetLayout layout;
  const double width = std::max(cardWidth(pictureWidth) - kTextLeft - kTextRight, 1.0);
  const double left = CardLayout::kMargin + kTextLeft;
  double y = kTopAir;
  for (const auto& item : content.items) {
    QtParagraph text(item.text, sheetFont(item.kind, measurer), content.frame.rightToLeft);
    text.breakLines(width, item.maximumLines);
    if (!layout.items.empty()) y += gapAbove(item.kind);
    // Only a place is pressed: its shape ends where its text does.
    const double itemWidth = item.kind == Kind::kPlace ? std::ceil(text.width()) : width;
    layout.items.emplace_back(left, y, itemWidth, std::ceil(text.height()));
    y = layout.items.back().bottom();
  }
  CardContent frame = content.frame;
  frame.bodyHeight = y + kBottomAir;
  layout.card = CardLayout::make(frame, pictureWidth, measurer);
  const double bodyTop = layout.card.card.bottom() - frame.bodyHeight;
  for (std::size_t i = 0; i < layout.items.size(); ++i) {
    QRectF& place = layout.items[i];
    place.translate(0, bodyTop);
    if (frame.rightToLeft) place.moveLeft(pictureWidth - place.right());
    if (content.items[i].kind != Kind::kPlace) continue;
    const QRectF shape = place.adjusted(-kShapeSide, -kShapeAir, kShapeSide, kShapeAir);
    layout.card.rows.push_back({place, place, shape});
  }
  return layout;
}

}  // namespace vantrel
