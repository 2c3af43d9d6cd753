#pragma once

#include "today/card/CardContent.h"
#include "today/card/CardLayout.h"
#include "today/card/CardShadow.h"
#include "today/card/Theme.h"

class QPainter;

namespace vantrel {

class QtTextMeasurer;

/// Draws a whole card, for the window as for a picture in a file. Main thread.
class CardPainter {
 public:
  explicit CardPainter(const QtTextMeasurer& measurer) : measurer_(measurer) {}

  /// The painter's device is as large as the picture that `layout` was made for; what is behind the
  /// card has been filled.
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
