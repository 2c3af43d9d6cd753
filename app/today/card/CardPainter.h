#pragma once

#include "today/card/CardContent.h"
#include "today/card/CardLayout.h"
#include "today/card/CardShadow.h"
#include "today/card/Theme.h"

class QPainter;

namespace vantrel {

class QtTextMeasurer;

/// Draws a card, in a window or a picture. Main thread only.
class CardPainter {
 public:
  explicit CardPainter(const QtTextMeasurer& measurer) : measurer_(measurer) {}

  /// The painter's device must have the size for which `layout` was made, and be filled with the
  /// background.
  void paint(QPainter& painter, const QSize& pictureSize, const CardContent& content,
             const CardLayout& layout, const Theme& theme);

 private:
  void paintShadow(QPainter& painter, const QSize& pictureSize, const CardLayout& layout,
                   const Theme& theme);
  void paintHeader(QPainter& painter, const CardContent& content, const CardLayout& layout,
                   const Theme& theme) const;
  void paintBar(QPainter& painter, const CardContent& content, const CardLayout& layout,
                const Theme& theme) const;
  void paintRows(QPainter& painter, const CardContent& content, const CardLayout& layout,
                 const Theme& theme) const;
  static void paintTexts(QPainter& painter, const CardContent& content, const CardLayout& layout,
                         const Theme& theme);
  static void paintFocus(QPainter& painter, const CardContent& content, const CardLayout& layout,
                         const Theme& theme);

  const QtTextMeasurer& measurer_;
  CardShadow shadow_;
};

}  // namespace vantrel
