#pragma once

#include <QRectF>

#include "platform/view/Label.h"

class QColor;
class QPainter;

namespace vantrel {

class QtTextMeasurer;

/// Draws a label with at most its number of lines. A text that does not fit is made smaller, down
/// to the label's minimum scale, then truncated with an ellipsis.
void paintLabel(QPainter& painter, const Label& label, const QRectF& frame, const QColor& color,
                const QtTextMeasurer& measurer, bool rightToLeft);

}  // namespace vantrel
