#include "today/card/CardPainter.h"

#include <QFont>
#include <QPainter>
#include <QPainterPath>

#include "platform/qt/QtParagraph.h"
#include "platform/qt/QtTextMeasurer.h"
#include "today/card/AppIcon.h"
#include "today/card/CardFonts.h"
#include "today/card/LabelPainter.h"

namespace vantrel {

namespace {

constexpr double kCardRadius = 14;
constexpr double kShapeRadius = 8;
constexpr double kRingWidth = 2;
constexpr double kHeldOpacity = 0.55;

const QColor& colorOf(CardContent::Text::Kind kind, const Theme& theme) {
  using Kind = CardContent::Text::Kind;
  if (kind == Kind::kCaption || kind == Kind::kZone) return theme.name;
  return kind == Kind::kPlace ? theme.action : theme.sheetText;
}

/// Draws a text, truncated to one line unless it may have more, centred vertically in `area`.
void paintText(QPainter& painter, const std::string& text, const QFont& font, const QRectF& area,
               const QColor& color, bool rightToLeft, int maximumLines = 1) {
  QtParagraph paragraph(text, font, rightToLeft);
  paragraph.breakLines(area.width(), maximumLines);
  painter.setPen(color);
  paragraph.draw(painter, {area.left(), area.center().y() - paragraph.height() / 2});
}

/// Draws the text of a button, centred in its area.
void paintAction(QPainter& painter, const std::string& text, const QFont& font, const QRectF& area,
                 const QColor& color, bool held) {
  const QtParagraph paragraph(text, font);
  painter.setOpacity(held ? kHeldOpacity : 1);
  painter.setPen(color);
  const QPointF half(paragraph.width() / 2, paragraph.height() / 2);
  paragraph.draw(painter, area.center() - half);
  painter.setOpacity(1);
}

void paintRing(QPainter& painter, const QRectF& shape, const QColor& color) {
  const double inset = kRingWidth / 2;
  painter.setPen(QPen(color, kRingWidth));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(shape.adjusted(inset, inset, -inset, -inset), kShapeRadius - inset,
                          kShapeRadius - inset);
}

}  // namespace

void CardPainter::paint(QPainter& painter, const QSize& pictureSize, const CardContent& content,
                        const CardLayout& layout, const Theme& theme) {
  painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  paintShadow(painter, pictureSize, layout, theme);
  painter.save();
  QPainterPath outline;
  outline.addRoundedRect(layout.card, kCardRadius, kCardRadius);
  painter.fillPath(outline, theme.card);
  painter.setClipPath(outline);
  paintHeader(painter, content, layout, theme);
  if (content.bar) paintBar(painter, content, layout, theme);
  paintRows(painter, content, layout, theme);
  paintTexts(painter, content, layout, theme);
  paintFocus(painter, content, layout, theme);
  painter.restore();
}

void CardPainter::paintShadow(QPainter& painter, const QSize& pictureSize, const CardLayout& layout,
                              const Theme& theme) {
  const double scale = painter.device()->devicePixelRatioF();
  const QImage& shadow = shadow_.imageFor(pictureSize, scale, layout.card, theme.shadowOpacity);
  // In bands: for a large image Qt starts threads, which takes longer than drawing.
  constexpr int kPixelsPerBand = 1 << 15;
  const int height = std::max(1, kPixelsPerBand / std::max(1, shadow.width()));
  for (int y = 0; y < shadow.height(); y += height) {
    painter.drawImage(QPointF(0, y / scale), shadow, QRectF(0, y, shadow.width(), height));
  }
}

void CardPainter::paintHeader(QPainter& painter, const CardContent& content,
                              const CardLayout& layout, const Theme& theme) const {
  painter.fillRect(layout.header, theme.header);
  painter.drawImage(layout.icon,
                    appIcon(layout.icon.width(), painter.device()->devicePixelRatioF()));
  paintText(painter, "Vantrel", cardfonts::name(measurer_), layout.name, theme.name,
            content.rightToLeft);
  paintAction(painter, content.action, cardfonts::action(measurer_), layout.action, theme.action,
              content.held == CardContent::Part::kAction);
}

void CardPainter::paintBar(QPainter& painter, const CardContent& content, const CardLayout& layout,
                           const Theme& theme) const {
  painter.fillRect(layout.bar, theme.barFill);
  painter.fillRect(layout.barStripe, theme.barStripe);
  paintText(painter, content.bar->text, cardfonts::barText(measurer_), layout.barText,
            theme.barText, content.rightToLeft, 0);
  paintAction(painter, content.bar->action, cardfonts::barAction(measurer_), layout.barAction,
              theme.action, content.held == CardContent::Part::kBarAction);
}

void CardPainter::paintRows(QPainter& painter, const CardContent& content, const CardLayout& layout,
                            const Theme& theme) const {
  if (content.message) {
    paintLabel(painter, *content.message, layout.message,
               theme.resolved(content.message->textColor()), measurer_, content.rightToLeft);
  }
  for (std::size_t i = 0; i < content.rows.size(); ++i) {
    const auto& labels = content.rows[i];
    const auto& place = layout.rows[i];
    const QColor text = theme.resolved(labels.title->textColor());
    const QColor untouched = theme.resolved(content.untouchedText);
    QColor backing = theme.backingFor(text, untouched);
    if (!backing.isValid() && content.hoveredRow == i) backing = theme.hover;
    if (backing.isValid()) {
      painter.setPen(Qt::NoPen);
      painter.setBrush(backing);
      painter.drawRoundedRect(place.shape, kShapeRadius, kShapeRadius);
    }
    paintLabel(painter, *labels.title, place.title, text, measurer_, content.rightToLeft);
    paintLabel(painter, *labels.date, place.date, text, measurer_, content.rightToLeft);
  }
}

void CardPainter::paintTexts(QPainter& painter, const CardContent& content,
                             const CardLayout& layout, const Theme& theme) {
  for (std::size_t i = 0; i < layout.texts.size(); ++i) {
    const auto kind = content.texts[i].kind;
    const bool held =
        kind == CardContent::Text::Kind::kPlace && content.held == CardContent::Part::kRow;
    painter.setOpacity(held ? kHeldOpacity : 1);
    painter.setPen(colorOf(kind, theme));
    const auto& [place, paragraph] = layout.texts[i];
    paragraph.draw(painter, place.topLeft());
  }
  painter.setOpacity(1);
}

void CardPainter::paintFocus(QPainter& painter, const CardContent& content,
                             const CardLayout& layout, const Theme& theme) {
  using Part = CardContent::Part;
  constexpr QMarginsF kAir(3, 3, 3, 3);
  if (content.focused == Part::kRow && content.focusedRow < layout.rows.size()) {
    paintRing(painter, layout.rows[content.focusedRow].shape, theme.focus);
  }
  if (content.focused == Part::kAction) paintRing(painter, layout.action - kAir, theme.focus);
  if (content.focused == Part::kBarAction) paintRing(painter, layout.barAction - kAir, theme.focus);
}

}  // namespace vantrel
