#pragma once

#include <QRectF>
#include <vector>

#include "platform/qt/QtParagraph.h"
#include "today/card/CardContent.h"

namespace vantrel {

class QtTextMeasurer;

/// Where everything stands in a picture of the card, in logical pixels from the picture's top left
/// corner; mirrored in right-to-left interfaces.
struct CardLayout {
  /// Free space around the card.
  static constexpr double kMargin = 28;
  static constexpr double kUsualCardWidth = 398;

  struct Row {
    QRectF title;
    QRectF date;
    QRectF shape;  ///< What is touched, backed and ringed: title, date, the gap, and some air.
  };
  struct Text {
    QRectF place;
    QtParagraph paragraph;
  };

  QRectF card;
  QRectF header;
  QRectF icon;
  QRectF name;
  QRectF action;  ///< The area to hit, larger than the text; empty when there is none.
  QRectF bar;     ///< Empty when there is none.
  QRectF barStripe;
  QRectF barText;
  QRectF barAction;  ///< The area to hit.
  QRectF message;
  std::vector<Row> rows;  ///< Of a plan's sheet the one text that can be pressed, its place.
  std::vector<Text> texts;

  double bodyTop() const { return header.bottom() + bar.height(); }
  /// The height of a picture with the same space all around.
  double pictureHeight() const { return card.bottom() + kMargin; }

  static CardLayout make(const CardContent& content, double pictureWidth,
                         const QtTextMeasurer& measurer);
};

/// The width of a card in a picture of that width.
double cardWidth(double pictureWidth);

}  // namespace vantrel
