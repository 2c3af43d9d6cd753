#pragma once

#include "today/CardPainter.h"
#include "today/PlanSheetLayout.h"

namespace vantrel {

/// Draws the sheet of a plan on a card like the widget's, for the window as for a picture in a
/// file. Main thread.
class PlanSheetPainter {
 public:
  explicit PlanSheetPainter(const QtTextMeasurer& measurer)
      : measurer_(measurer), card_(measurer) {}

  /// As CardPainter::paint.
  void paint(QPainter& painter, const QSize& pictureSize, const PlanSheetContent& content,
             const PlanSheetLayout& layout, const Theme& theme);

 private:
  const QtTextMeasurer& measurer_;
  CardPainter card_;
};

}  // namespace vantrel
