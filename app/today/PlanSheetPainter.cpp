#include "today/PlanSheetPainter.h"

#include <QFont>
#include <QPainter>

#include "platform/qt/QtParagraph.h"
#include "platform/qt/QtTextMeasurer.h"

namespace vantrel {

namespace {

using Kind = PlanSheetContent::Kind;

constexpr double kHeldOpacity = 0.55;

const QColor& colorOf(Kind kind, const Theme& theme) {
  switch (kind) {
    case Kind::kCaption:
    case Kind::kZone:
      return theme.name;
    case Kind::kPlace:
      return theme.action;
    case Kind::kTitle:
    case Kind::kText:
    case Kind::kDetail:
      break;
  }
  return theme.sheetText;
}

}  // namespace

void PlanSheetPainter::paint(QPainter& painter, const QSize& pictureSize,
                             const PlanSheetContent& content, const PlanSheetLayout& layout,
                             const Theme& theme) {
  card_.paint(painter, pictureSize, content.frame, layout.card, theme);
  const bool rightToLeft = content.frame.rightToLeft;
  for (std::size_t i = 0; i < content.items.size(); ++i) {
    const auto& item = content.items[i];
    const bool held = item.kind == Kind::kPlace && content.frame.held == CardContent::Part::kRow;
    QtParagraph text(item.text, sheetFont(item.kind, measurer_), rightToLeft);
    text.breakLines(layout.items[i].width(), item.maximumLines);
    painter.setOpacity(held ? kHeldOpacity : 1);
    painter.setPen(colorOf(item.kind, theme));
    text.draw(painter, layout.items[i].topLeft(),
              rightToLeft ? QtParagraph::Alignment::kRight : QtParagraph::Alignment::kLeft);
  }
  painter.setOpacity(1);
}

}  // namespace vantrel
