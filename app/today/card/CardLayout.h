#pragma once

#include <QRectF>
#include <vector>

#include "platform/qt/QtParagraph.h"
#include "today/card/CardContent.h"

namespace vantrel {

class QtTextMeasurer;

/// The positions of all parts in a picture of the card, in logical pixels from its top left corner;
/// mirrored in right-to-left interfaces.
struct CardLayout {
  /// The margin around the card.
  static constexpr double kMargin = 28;
  static constexpr double kUsualCardWidth = 398;

  struct Row {
    QRectF title;
    QRectF date;
    QRectF shape;  ///< Of touch, background and focus ring: title and date with padding.
  };
  struct Text {
    QRectF place;
    QtParagraph paragraph;
  };

  QRectF card;
  QRectF header;
  QRectF icon;
  QRectF name;
  QRectF action;  ///< The area to press, larger than the text; empty for none.
  QRectF bar;     ///< Empty for none.
  QRectF barStripe;
  QRectF barText;
  QRectF barAction;  ///< The area to press.
  QRectF message;
  std::vector<Row> rows;  ///< In a plan's sheet: its place, if it has one.
  std::vector<Text> texts;

  double bodyTop() const { return header.bottom() + bar.height(); }
  /// The height of a picture with equal margins.
  double pictureHeight() const { return card.bottom() + kMargin; }

  static CardLayout make(const CardContent& content, double pictureWidth,
                         const QtTextMeasurer& measurer);
};

/// Returns the width of the card in a picture of that width.
double cardWidth(double pictureWidth);

}  // namespace vantrel
