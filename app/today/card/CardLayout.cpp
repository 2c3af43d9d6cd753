#include "today/card/CardLayout.h"

#include <QFont>
#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/qt/QtTextMeasurer.h"
#include "today/card/CardFonts.h"

namespace vantrel {

namespace {

constexpr double kHeaderHeight = 36;
constexpr double kBarHeight = 38;
constexpr double kBarAir = 10;
constexpr double kStripeWidth = 3;
constexpr double kIconSize = 20;
constexpr double kIconLeft = 9;
constexpr double kTextLeft = 37;
constexpr double kActionMargin = 14;
constexpr double kShapeSide = 8;
constexpr double kShapeAir = 4;
constexpr double kColumnGap = 12;
constexpr double kTextRight = 24;
constexpr double kTextsTop = 14;
constexpr double kTextsBottom = 20;

/// The space above a text that is not the first.
double gapAbove(CardContent::Text::Kind kind) {
  using Kind = CardContent::Text::Kind;
  return kind == Kind::kCaption ? 14 : kind == Kind::kWhen ? 6 : 2;
}

QRectF shapeAround(const QRectF& rect) {
  return rect.adjusted(-kShapeSide, -kShapeAir, kShapeSide, kShapeAir);
}

QRectF toQRectF(const Rect& rect, QPointF origin) {
  return {origin.x() + rect.origin.x, origin.y() + rect.origin.y, rect.size.width,
          rect.size.height};
}

double actionWidth(const std::string& text, const QFont& font) {
  return text.empty() ? 0 : std::ceil(QtParagraph(text, font).width()) + 2 * kActionMargin;
}

/// Ends the labels of a row before the next column.
void keepOutOfNextColumn(std::vector<CardLayout::Row>& rows) {
  for (auto& row : rows) {
    for (const auto& other : rows) {
      const double limit = other.title.left() - kColumnGap;
      if (other.title.left() <= row.title.left() || row.title.right() <= limit) continue;
      row.title.setRight(limit);
      row.date.setRight(limit);
    }
  }
}

void placeHeader(CardLayout& layout, const CardContent& content, double scale,
                 const QtTextMeasurer& measurer) {
  const QRectF& card = layout.card;
  layout.header = QRectF(card.left(), card.top(), card.width(), std::ceil(kHeaderHeight * scale));
  const double middle = layout.header.center().y();
  layout.icon =
      QRectF(card.left() + kIconLeft, std::round(middle - kIconSize / 2), kIconSize, kIconSize);
  const double action = actionWidth(content.action, cardfonts::action(measurer));
  if (action > 0) {
    layout.action = QRectF(card.right() - action, card.top(), action, layout.header.height());
  }
  const double nameLeft = card.left() + kTextLeft;
  layout.name =
      QRectF(nameLeft, card.top(), card.right() - action - nameLeft, layout.header.height());
}

void placeBar(CardLayout& layout, const CardContent& content, double scale,
              const QtTextMeasurer& measurer) {
  const QRectF& header = layout.header;
  const double action = actionWidth(content.bar->action, cardfonts::barAction(measurer));
  const double left = header.left() + kTextLeft;
  const double width = header.right() - action - left;
  QtParagraph text(content.bar->text, cardfonts::barText(measurer));
  text.breakLines(width);
  const double height =
      std::max(std::ceil(kBarHeight * scale), std::ceil(text.height() + 2 * kBarAir));
  layout.bar = QRectF(header.left(), header.bottom(), header.width(), height);
  layout.barStripe = QRectF(layout.bar.topLeft(), QSizeF(kStripeWidth, height));
  layout.barText = QRectF(left, layout.bar.top(), width, height);
  layout.barAction = QRectF(layout.bar.right() - action, layout.bar.top(), action, height);
}

void placeRows(CardLayout& layout, const CardContent& content) {
  const QPointF origin(layout.card.left() + content.bodyInset, layout.bodyTop());
  for (const auto& row : content.rows) {
    layout.rows.push_back(
        {toQRectF(row.title->frame(), origin), toQRectF(row.date->frame(), origin), {}});
  }
  keepOutOfNextColumn(layout.rows);
  for (auto& row : layout.rows) row.shape = shapeAround(row.title.united(row.date));
  if (content.message) layout.message = toQRectF(content.message->frame(), origin);
}

/// Places the texts of a sheet and returns the bottom of the card.
double placeTexts(CardLayout& layout, const CardContent& content, const QtTextMeasurer& measurer) {
  const double left = layout.card.left() + kTextLeft;
  double y = layout.bodyTop() + kTextsTop;
  for (const auto& item : content.texts) {
    double width = std::max(layout.card.width() - kTextLeft - kTextRight, 1.0);
    QtParagraph paragraph(item.text, cardfonts::text(item.kind, measurer), content.rightToLeft);
    paragraph.breakLines(width, item.maximumLines);
    const bool canBePressed = item.kind == CardContent::Text::Kind::kPlace;
    if (canBePressed) paragraph.breakLines(width = std::ceil(paragraph.width()));
    if (!layout.texts.empty()) y += gapAbove(item.kind);
    const QRectF place(left, y, width, std::ceil(paragraph.height()));
    if (canBePressed) layout.rows.push_back({place, place, shapeAround(place)});
    layout.texts.push_back({place, std::move(paragraph)});
    y = place.bottom();
  }
  return y + kTextsBottom;
}

void mirror(CardLayout& layout, double pictureWidth) {
  const auto flip = [&](QRectF& rect) { rect.moveLeft(pictureWidth - rect.right()); };
  for (QRectF* rect : {&layout.icon, &layout.name, &layout.action, &layout.barStripe,
                       &layout.barText, &layout.barAction, &layout.message}) {
    flip(*rect);
  }
  for (auto& row : layout.rows) {
    flip(row.title);
    flip(row.date);
    flip(row.shape);
  }
  for (auto& text : layout.texts) flip(text.place);
}

}  // namespace

double cardWidth(double pictureWidth) {
  return std::max(pictureWidth - 2 * CardLayout::kMargin, 0.0);
}

CardLayout CardLayout::make(const CardContent& content, double pictureWidth,
                            const QtTextMeasurer& measurer) {
  const double scale = std::max(measurer.scale(), 1.0);
  CardLayout layout;
  layout.card = QRectF(kMargin, kMargin, cardWidth(pictureWidth), 0);
  placeHeader(layout, content, scale, measurer);
  if (content.bar) placeBar(layout, content, scale, measurer);
  placeRows(layout, content);
  layout.card.setBottom(content.texts.empty() ? layout.bodyTop() + content.bodyHeight
                                              : placeTexts(layout, content, measurer));
  if (content.rightToLeft) mirror(layout, pictureWidth);
  return layout;
}

}  // namespace vantrel
