#include "today/card/Theme.h"

#include <algorithm>
#include <cmath>

#include "appearance/Color+Constants.h"
#include "time/DeviceSystemMajorVersion.h"

namespace vantrel {

namespace {

constexpr double kReadableContrast = 4.5;

QColor toQColor(const Color& color) {
  return QColor::fromRgbF(static_cast<float>(color.red()), static_cast<float>(color.green()),
                          static_cast<float>(color.blue()), static_cast<float>(color.alpha()));
}

double linear(double component) {
  return component <= 0.04045 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
         0.0722 * linear(color.blueF());
}

Theme darkTheme() {
  Theme theme;
  theme.dark = true;
  theme.behind = QColor(0x0E, 0x0F, 0x11);
  theme.card = toQColor(palette::menuBackgroundColor());
  theme.header = toQColor(palette::panelColor());
  theme.name = QColor(0xA7, 0xA7, 0xA7);
  theme.sheetText = Qt::white;
  theme.action = toQColor(palette::vantrelBlue());
  theme.focus = toQColor(palette::vantrelYellow());
  theme.backing = QColor(0x3A, 0x3A, 0x3A);
  theme.hover = QColor(0xFF, 0xFF, 0xFF, 0x17);
  theme.barFill = toQColor(palette::vantrelRedWithAlpha(0.13));
  theme.barText = QColor(0xFF, 0xD9, 0xCC);
  theme.shadowOpacity = 0.58;
  return theme;
}

Theme lightTheme() {
  // A blue with enough contrast on white and on the header.
  const QColor blue(0x0B, 0x6F, 0x86);
  Theme theme;
  theme.behind = QColor(0xE6, 0xE7, 0xEA);
  theme.card = Qt::white;
  theme.header = QColor(0xF4, 0xF4, 0xF5);
  theme.name = QColor(0x5E, 0x5E, 0x5E);
  theme.sheetText = Qt::black;
  theme.action = blue;
  theme.focus = blue;
  theme.backing = toQColor(palette::menuBackgroundColor());
  theme.hover = QColor(0, 0, 0, 0x0F);
  theme.barFill = toQColor(palette::vantrelRedWithAlpha(0.08));
  theme.barText = QColor(0x7A, 0x23, 0x06);
  theme.shadowOpacity = 0.125;
  return theme;
}

}  // namespace

Theme Theme::forStyle(bool dark, bool highContrast) {
  Theme theme = dark ? darkTheme() : lightTheme();
  if (highContrast) {
    theme.name = theme.sheetText;
    theme.barText = theme.sheetText;
    theme.action = dark ? QColor(0x9B, 0xE4, 0xF4) : QColor(0x06, 0x4B, 0x5B);
  }
  theme.barStripe = toQColor(palette::vantrelRed());
  return theme;
}

QColor Theme::resolved(const Color& color) const {
  return toQColor(color.resolvedColor(dark));
}

QColor Theme::backingFor(const QColor& text, const QColor& untouchedText) const {
  if (text == untouchedText && contrastRatio(text, card) >= kReadableContrast) return {};
  // Black text on the dark card needs a light background, other texts a dark one.
  return contrastRatio(text, backing) >= kReadableContrast ? backing : lightTheme().header;
}

bool cardIsDark(bool desktopIsDark) {
  const int major = DeviceSystemMajorVersion();
  if (major < 10) return true;
  return major >= 13 && desktopIsDark;
}

double contrastRatio(const QColor& a, const QColor& b) {
  const double first = luminance(a);
  const double second = luminance(b);
  return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

}  // namespace vantrel
