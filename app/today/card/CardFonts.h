#pragma once

#include <QFont>

#include "today/card/CardContent.h"

namespace vantrel {
class QtTextMeasurer;
}

/// The fonts of the card's own texts. Rows use the fonts of their labels.
namespace vantrel::cardfonts {

QFont name(const QtTextMeasurer& measurer);
QFont action(const QtTextMeasurer& measurer);
QFont barText(const QtTextMeasurer& measurer);
QFont barAction(const QtTextMeasurer& measurer);
QFont text(CardContent::Text::Kind kind, const QtTextMeasurer& measurer);

}  // namespace vantrel::cardfonts
