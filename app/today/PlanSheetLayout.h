#pragma once

#include "today/CardLayout.h"
#include "today/PlanSheetContent.h"

class QFont;

namespace vantrel {

/// Where everything stands in a picture of a plan's sheet, in logical pixels; mirrored in
/// right-to-left interfaces.
struct PlanSheetLayout {
  CardLayout card;  ///< Its one row's shape is what is pressed to see the place.
  std::vector<QRectF> items;
  /// Whether there is a place to press.
  bool hasPlace() const { return !card.rows.empty(); }

  static PlanSheetLayout make(const PlanSheetContent& content, double pictureWidth,
                              const QtTextMeasurer& measurer);
};

/// The font that an item of that kind is set in.
QFont sheetFont(PlanSheetContent::Kind kind, const QtTextMeasurer& measurer);

}  // namespace vantrel
