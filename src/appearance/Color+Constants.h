#pragma once

#include "base/Color.h"

/// The named colours of the application family, and operations on colours. Colours take and give
/// components as fractions, 0 to 1; nothing is clamped. Any thread.
namespace vantrel::palette {

Color menuBackgroundColor();
Color menuButtonColor();
Color menuTextButtonColor();
Color panelColor();
Color switchBackgroundColor();
Color searchBarColor();
Color panelTextColor();
Color tableTextColor();
Color timeWheelTextColor();
Color milkyWayColor();
Color milkyWayColorWithAlpha(double alpha);
Color vantrelLightGrayColor();
Color vantrelLightGrayColorWithAlpha(double alpha);
/// White; black in the dark interface style on system version 13 and later.
Color componentBackgroundColor();
Color vantrelBlue();
Color vantrelBlueWithAlpha(double alpha);
Color vantrelRed();
Color vantrelRedWithAlpha(double alpha);
Color vantrelYellow();
Color vantrelYellowWithAlpha(double alpha);
Color sunColorWithAlpha(double alpha);
Color moonColorWithAlpha(double alpha);
Color sunRiseLineColor();
Color sunRiseLineColorWithAlpha(double alpha);
Color sunSetLineColor();
Color sunSetLineColorWithAlpha(double alpha);
Color moonRiseLineColor();
Color moonRiseLineColorWithAlpha(double alpha);
Color moonSetLineColor();
Color moonSetLineColorWithAlpha(double alpha);
Color goldenHourLayerColor();
Color goldenHourLayerColorWithAlpha(double alpha);
// The misspelling is part of the public name.
Color civilTwiligthLayerColor();
Color civilTwiligthLayerColorWithAlpha(double alpha);
Color nauticalTwilightLayerColor();
Color nauticalTwilightLayerColorWithAlpha(double alpha);
Color astronomicalTwilightLayerColor();
Color astronomicalTwilightLayerColorWithAlpha(double alpha);
Color oldAstronomicalTwilightLayerColor();
Color nightLayerColor();
Color nightLayerColorWithAlpha(double alpha);
Color shadowColor();
Color galacticCenterRiseLineColor();
Color galacticCenterRiseLineColorWithAlpha(double alpha);
Color galacticCenterSetLineColor();
Color galacticCenterSetLineColorWithAlpha(double alpha);
Color sunPathColor();
Color sunPathColorWithAlpha(double alpha);
Color moonPathColor();
Color timeWheelErrorTextColor();
Color timeWheelWarningTextColor();
Color timeWheelHourSeparatorLineColor();
Color timeWheelHourSeparatorLineColorWithAlpha(double alpha);
// The misspelling is part of the public name.
Color timeWheelElevetionSeparationLineColor();
Color timeWheelElevetionSeparationLineColorWithAlpha(double alpha);
Color timeWheelDayBackgroundColor();
Color shadowSectorColorWithAlpha(float alpha);
/// The moon's shadow at brightness 0.89 · `x`.
Color interpolatedMoonShadowColor(double x);

/// Its luma, by the weights of ITU-R BT.601; a colour of white and alpha comes back as it is.
Color toGrayScale(const Color& color);
double getAlpha(const Color& color);
/// The same colour, as red, green and blue, with that alpha.
Color colorByChangingAlphaTo(const Color& color, double alpha);

struct Hsv {
  double hue = 0;  ///< Degrees, at least 0 and below 360; 0 for a grey.
  double saturation = 0;
  double value = 0;
  friend bool operator==(const Hsv&, const Hsv&) = default;
};
/// The hexcone model: A. R. Smith, "Color Gamut Transform Pairs", SIGGRAPH 1978.
Hsv RGBtoHSV(double red, double green, double blue);

/// The colour over black of opacity `alpha`, its components reduced by a remainder (the planner's
/// shadows depend on that). Opaque black where nothing would be left to see.
Color shadowWithBlackColorWithAlpha(const Color& color, double alpha);

/// The `alpha` that asks for the interpolated one.
inline constexpr double kInterpolatedAlpha = -1;
/// `start` at percentage 0, `end` at 1, in a straight line between and beyond.
Color interpolateStartColor(const Color& start, const Color& end, double percentage, double alpha);

}  // namespace vantrel::palette
