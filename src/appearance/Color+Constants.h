#pragma once

#include "base/Color.h"

/// The named colours of the application family, and operations on colours. Components are fractions
/// from 0 to 1 and never clamped. Thread-safe.
namespace vantrel::palette {

/// Levels from 0 to 255; `alpha` is a fraction.
inline Color rgb(double red, double green, double blue, double alpha) {
  return Color::colorWithRed(red / 255, green / 255, blue / 255, alpha);
}
inline Color gray(double level, double alpha) {
  return rgb(level, level, level, alpha);
}

// clang-format off
inline Color menuBackgroundColor() { return gray(31, 1); }
inline Color menuButtonColor() { return gray(58, 1); }
inline Color menuTextButtonColor() { return gray(146, 1); }
inline Color panelColor() { return gray(40, 1); }
inline Color switchBackgroundColor() { return gray(103, 1); }
inline Color searchBarColor() { return gray(82, 1); }
inline Color panelTextColor() { return Color::whiteColor(); }
inline Color tableTextColor() { return Color::whiteColor(); }
inline Color timeWheelTextColor() { return Color::whiteColor(); }
inline Color milkyWayColorWithAlpha(double alpha) { return Color::colorWithWhite(1, alpha); }
inline Color milkyWayColor() { return milkyWayColorWithAlpha(1); }
inline Color vantrelLightGrayColorWithAlpha(double alpha) { return gray(167, alpha); }
inline Color vantrelLightGrayColor() { return vantrelLightGrayColorWithAlpha(1); }
inline Color vantrelBlueWithAlpha(double alpha) { return rgb(63, 197, 226, alpha); }
inline Color vantrelBlue() { return vantrelBlueWithAlpha(1); }
inline Color vantrelRedWithAlpha(double alpha) { return rgb(250, 79, 16, alpha); }
inline Color vantrelRed() { return vantrelRedWithAlpha(1); }
inline Color vantrelYellowWithAlpha(double alpha) { return rgb(252, 217, 29, alpha); }
inline Color vantrelYellow() { return vantrelYellowWithAlpha(1); }
inline Color sunColorWithAlpha(double alpha) { return rgb(250, 219, 61, alpha); }
inline Color moonColorWithAlpha(double alpha) { return rgb(26, 174, 206, alpha); }
inline Color sunRiseLineColorWithAlpha(double alpha) { return vantrelYellowWithAlpha(alpha); }
inline Color sunRiseLineColor() { return sunRiseLineColorWithAlpha(1); }
inline Color sunSetLineColorWithAlpha(double alpha) { return vantrelRedWithAlpha(alpha); }
inline Color sunSetLineColor() { return sunSetLineColorWithAlpha(1); }
inline Color moonRiseLineColorWithAlpha(double alpha) { return vantrelBlueWithAlpha(alpha); }
inline Color moonRiseLineColor() { return moonRiseLineColorWithAlpha(1); }
inline Color moonSetLineColorWithAlpha(double alpha) { return rgb(30, 52, 122, alpha); }
inline Color moonSetLineColor() { return moonSetLineColorWithAlpha(1); }
inline Color goldenHourLayerColorWithAlpha(double alpha) { return vantrelRedWithAlpha(alpha); }
inline Color goldenHourLayerColor() { return goldenHourLayerColorWithAlpha(1); }
// The misspelling is part of the public name.
inline Color civilTwiligthLayerColorWithAlpha(double alpha) { return rgb(27, 134, 251, alpha); }
inline Color civilTwiligthLayerColor() { return civilTwiligthLayerColorWithAlpha(1); }
inline Color nauticalTwilightLayerColorWithAlpha(double alpha) { return rgb(28, 73, 220, alpha); }
inline Color nauticalTwilightLayerColor() { return nauticalTwilightLayerColorWithAlpha(1); }
inline Color astronomicalTwilightLayerColorWithAlpha(double alpha) {
  return rgb(0, 28, 158, alpha);
}
inline Color astronomicalTwilightLayerColor() { return astronomicalTwilightLayerColorWithAlpha(1); }
inline Color oldAstronomicalTwilightLayerColor() { return rgb(30, 52, 152, 1); }
inline Color nightLayerColorWithAlpha(double alpha) { return gray(0, alpha); }
inline Color nightLayerColor() { return nightLayerColorWithAlpha(1); }
inline Color shadowColor() { return Color::colorWithWhite(0, 0.5); }
inline Color galacticCenterRiseLineColorWithAlpha(double alpha) { return gray(146, alpha); }
inline Color galacticCenterRiseLineColor() { return galacticCenterRiseLineColorWithAlpha(1); }
inline Color galacticCenterSetLineColorWithAlpha(double alpha) { return gray(58, alpha); }
inline Color galacticCenterSetLineColor() { return galacticCenterSetLineColorWithAlpha(1); }
inline Color sunPathColorWithAlpha(double alpha) { return vantrelYellowWithAlpha(alpha); }
inline Color sunPathColor() { return sunPathColorWithAlpha(1); }
inline Color moonPathColor() { return vantrelBlue(); }
inline Color timeWheelErrorTextColor() { return vantrelRed(); }
inline Color timeWheelWarningTextColor() { return vantrelYellow(); }
inline Color timeWheelHourSeparatorLineColorWithAlpha(double alpha) { return gray(45, alpha); }
inline Color timeWheelHourSeparatorLineColor() {
  return timeWheelHourSeparatorLineColorWithAlpha(1);
}
// The misspelling is part of the public name.
inline Color timeWheelElevetionSeparationLineColorWithAlpha(double alpha) {
  return gray(45, alpha);
}
inline Color timeWheelElevetionSeparationLineColor() {
  return timeWheelElevetionSeparationLineColorWithAlpha(1);
}
inline Color timeWheelDayBackgroundColor() { return rgb(175, 241, 255, 1); }
inline Color shadowSectorColorWithAlpha(float alpha) { return gray(12, double{alpha}); }
// clang-format on

/// White; black in the dark interface style on system version 13 and later.
Color componentBackgroundColor();
/// The moon's shadow at brightness 0.89 · `x`.
Color interpolatedMoonShadowColor(double x);

/// Returns the luma of `color` (ITU-R BT.601 weights) as a grey with the same alpha. A colour of
/// white and alpha is returned unchanged.
Color toGrayScale(const Color& color);
double getAlpha(const Color& color);
/// Returns `color` as red, green and blue, with another alpha.
Color colorByChangingAlphaTo(const Color& color, double alpha);

struct Hsv {
  double hue = 0;  ///< Degrees, at least 0 and below 360; 0 for a grey.
  double saturation = 0;
  double value = 0;
  friend bool operator==(const Hsv&, const Hsv&) = default;
};
/// Hexcone model: A. R. Smith, "Color Gamut Transform Pairs", SIGGRAPH 1978.
Hsv RGBtoHSV(double red, double green, double blue);

/// Composites `color` over black of opacity `alpha`. Each component is a remainder by the resulting
/// opacity, not a quotient: the planner's shadows depend on it. Opaque black if that opacity is 0.
Color shadowWithBlackColorWithAlpha(const Color& color, double alpha);

/// The `alpha` that selects the interpolated alpha.
inline constexpr double kInterpolatedAlpha = -1;
/// Linear: `start` at percentage 0, `end` at 1; other percentages extrapolate.
Color interpolateStartColor(const Color& start, const Color& end, double percentage, double alpha);

}  // namespace vantrel::palette
