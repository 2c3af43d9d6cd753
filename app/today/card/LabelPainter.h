#pragma once

#include <QRectF>

#include "platform/view/Label.h"

class QColor;
class QPainter;

namespace vantrel {

class QtTextMeasurer;

/// Draws a label as it asks to be drawn: at most its number of lines, smaller (down to its minimum
/// scale) where it would not fit, then cut at the end and marked.
void paintLabel(QPainter& painter, const Label& label, const QRectF& frame, const QColor& color,
                const QtTextMeasurer& measurer, bool rightToLeft);

}  // namespace vantrel
