#pragma once

#include <QColor>

#include "base/Color.h"

namespace vantrel {

/// The card's colours in the dark or the light interface style.
struct Theme {
  bool dark = false;
  QColor behind;  ///< Around the card, unless the desktop has a colour for it.
  QColor card;
  QColor header;
  QColor name;
  QColor sheetText;  ///< Of a plan's sheet.
  QColor action;     ///< "Show more", "Retry".
  QColor focus;
  QColor backing;  ///< Behind a touched row.
  QColor hover;    ///< Behind the row under the pointer, drawn over the card.
  QColor barFill;  ///< Laid over the card.
  QColor barText;
  QColor barStripe;
  double shadowOpacity = 0;

  /// With `highContrast`, all texts have a contrast of at least 7:1 instead of 4.5:1.
  static Theme forStyle(bool dark, bool highContrast = false);
  /// Returns the colour as this style draws it.
  QColor resolved(const Color& color) const;
  /// Returns the background that makes a row's text readable: for a row coloured by a touch, or
  /// whose text has a contrast below 4.5:1 on the card. Invalid if none is needed.
  QColor backingFor(const QColor& text, const QColor& untouchedText) const;
};

/// Whether the widget's texts need a dark card: before system version 10 they are white, from 13 on
/// they follow the desktop.
bool cardIsDark(bool desktopIsDark);

/// The contrast of two opaque colours, 1 to 21 (WCAG 2.1, "contrast ratio").
double contrastRatio(const QColor& a, const QColor& b);

}  // namespace vantrel
