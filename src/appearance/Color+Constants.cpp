#include "appearance/Color+Constants.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "platform/system/Device.h"

namespace vantrel::palette {

namespace {

constexpr double kFullScale = 255;

Color rgb(double red, double green, double blue, double alpha) {
  return Color::colorWithRed(red / kFullScale, green / kFullScale, blue / kFullScale, alpha);
}

Color gray(double level, double alpha) {
  return rgb(level, level, level, alpha);
}

}  // namespace

Color menuBackgroundColor() {
  return gray(31, 1);
}
Color menuButtonColor() {
  return gray(58, 1);
}
Color menuTextButtonColor() {
  return gray(146, 1);
}
Color panelColor() {
  return gray(40, 1);
}
Color switchBackgroundColor() {
  return gray(103, 1);
}
Color searchBarColor() {
  return gray(82, 1);
}
Color panelTextColor() {
  return Color::whiteColor();
}
Color tableTextColor() {
  return Color::whiteColor();
}
Color timeWheelTextColor() {
  return Color::whiteColor();
}
Color milkyWayColor() {
  return milkyWayColorWithAlpha(1);
}
Color milkyWayColorWithAlpha(double alpha) {
  return Color::colorWithWhite(1, alpha);
}
Color vantrelLightGrayColor() {
  return vantrelLightGrayColorWithAlpha(1);
}
Color vantrelLightGrayColorWithAlpha(double alpha) {
  return gray(167, alpha);
}
Color componentBackgroundColor() {
  constexpr int kFirstVersionWithStyles = 13;
  const int version = std::atoi(Device::currentDevice().systemVersion().c_str());
  if (version < kFirstVersionWithStyles) return Color::whiteColor();
  return Color::dynamicColor(Color::whiteColor(), Color::blackColor());
}
Color vantrelBlue() {
  return vantrelBlueWithAlpha(1);
}
Color vantrelBlueWithAlpha(double alpha) {
  return rgb(63, 197, 226, alpha);
}
Color vantrelRed() {
  return vantrelRedWithAlpha(1);
}
Color vantrelRedWithAlpha(double alpha) {
  return rgb(250, 79, 16, alpha);
}
Color vantrelYellow() {
  return vantrelYellowWithAlpha(1);
}
Color vantrelYellowWithAlpha(double alpha) {
  return rgb(252, 217, 29, alpha);
}
Color sunColorWithAlpha(double alpha) {
  return rgb(250, 219, 61, alpha);
}
Color moonColorWithAlpha(double alpha) {
  return rgb(26, 174, 206, alpha);
}
Color sunRiseLineColor() {
  return sunRiseLineColorWithAlpha(1);
}
Color sunRiseLineColorWithAlpha(double alpha) {
  return vantrelYellowWithAlpha(alpha);
}
Color sunSetLineColor() {
  return sunSetLineColorWithAlpha(1);
}
Color sunSetLineColorWithAlpha(double alpha) {
  return vantrelRedWithAlpha(alpha);
}
Color moonRiseLineColor() {
  return moonRiseLineColorWithAlpha(1);
}
Color moonRiseLineColorWithAlpha(double alpha) {
  return vantrelBlueWithAlpha(alpha);
}
Color moonSetLineColor() {
  return moonSetLineColorWithAlpha(1);
}
Color moonSetLineColorWithAlpha(double alpha) {
  return rgb(30, 52, 122, alpha);
}
Color goldenHourLayerColor() {
  return goldenHourLayerColorWithAlpha(1);
}
Color goldenHourLayerColorWithAlpha(double alpha) {
  return vantrelRedWithAlpha(alpha);
}
Color civilTwiligthLayerColor() {
  return civilTwiligthLayerColorWithAlpha(1);
}
Color civilTwiligthLayerColorWithAlpha(double alpha) {
  return rgb(27, 134, 251, alpha);
}
Color nauticalTwilightLayerColor() {
  return nauticalTwilightLayerColorWithAlpha(1);
}
Color nauticalTwilightLayerColorWithAlpha(double alpha) {
  return rgb(28, 73, 220, alpha);
}
Color astronomicalTwilightLayerColor() {
  return astronomicalTwilightLayerColorWithAlpha(1);
}
Color astronomicalTwilightLayerColorWithAlpha(double alpha) {
  return rgb(0, 28, 158, alpha);
}
Color oldAstronomicalTwilightLayerColor() {
  return rgb(30, 52, 152, 1);
}
Color nightLayerColor() {
  return nightLayerColorWithAlpha(1);
}
Color nightLayerColorWithAlpha(double alpha) {
  return gray(0, alpha);
}
Color shadowColor() {
  return Color::colorWithWhite(0, 0.5);
}
Color galacticCenterRiseLineColor() {
  return galacticCenterRiseLineColorWithAlpha(1);
}
Color galacticCenterRiseLineColorWithAlpha(double alpha) {
  return gray(146, alpha);
}
Color galacticCenterSetLineColor() {
  return galacticCenterSetLineColorWithAlpha(1);
}
Color galacticCenterSetLineColorWithAlpha(double alpha) {
  return gray(58, alpha);
}
Color sunPathColor() {
  return sunPathColorWithAlpha(1);
}
Color sunPathColorWithAlpha(double alpha) {
  return vantrelYellowWithAlpha(alpha);
}
Color moonPathColor() {
  return vantrelBlue();
}
Color timeWheelErrorTextColor() {
  return vantrelRed();
}
Color timeWheelWarningTextColor() {
  return vantrelYellow();
}
Color timeWheelHourSeparatorLineColor() {
  return timeWheelHourSeparatorLineColorWithAlpha(1);
}
Color timeWheelHourSeparatorLineColorWithAlpha(double alpha) {
  return gray(45, alpha);
}
Color timeWheelElevetionSeparationLineColor() {
  return timeWheelElevetionSeparationLineColorWithAlpha(1);
}
Color timeWheelElevetionSeparationLineColorWithAlpha(double alpha) {
  return gray(45, alpha);
}
Color timeWheelDayBackgroundColor() {
  return rgb(175, 241, 255, 1);
}
Color shadowSectorColorWithAlpha(float alpha) {
  return gray(12, static_cast<double>(alpha));
}
Color interpolatedMoonShadowColor(double x) {
  return Color::colorWithHue(191.0 / 360, 0.72, 0.89 * x, 1);
}

Color toGrayScale(const Color& color) {
  if (color.numberOfComponents() == 2) return color;
  const double luma = 0.299 * color.red() + 0.587 * color.green() + 0.114 * color.blue();
  return Color::colorWithRed(luma, luma, luma, color.alpha());
}

double getAlpha(const Color& color) {
  return color.alpha();
}

Color colorByChangingAlphaTo(const Color& color, double alpha) {
  return Color::colorWithRed(color.red(), color.green(), color.blue(), alpha);
}

Hsv RGBtoHSV(double red, double green, double blue) {
  const double max = std::max({red, green, blue});
  const double min = std::min({red, green, blue});
  const double difference = max - min;
  Hsv hsv{0, max != 0 ? 1 - min / max : 0, max};
  if (difference == 0) return hsv;
  if (max == red) {
    hsv.hue = 60 * ((green - blue) / difference);
    // A difference too small to tell leaves 360, which is 0.
    if (hsv.hue < 0) hsv.hue = std::fmod(hsv.hue + 360, 360);
  } else if (max == green) {
    hsv.hue = 60 * ((blue - red) / difference) + 120;
  } else {
    hsv.hue = 60 * ((red - green) / difference) + 240;
  }
  return hsv;
}

Color shadowWithBlackColorWithAlpha(const Color& color, double alpha) {
  const double opacity = alpha * (1 - color.alpha()) + color.alpha();
  if (opacity == 0) return Color::blackColor();
  const auto shadowed = [&](double component) {
    return std::fmod((1 - alpha) * color.alpha() * component, opacity);
  };
  return Color::colorWithRed(shadowed(color.red()), shadowed(color.green()), shadowed(color.blue()),
                             opacity);
}

Color interpolateStartColor(const Color& start, const Color& end, double percentage, double alpha) {
  const auto between = [percentage](double from, double to) {
    return from * (1 - percentage) + to * percentage;
  };
  return Color::colorWithRed(
      between(start.red(), end.red()), between(start.green(), end.green()),
      between(start.blue(), end.blue()),
      alpha == kInterpolatedAlpha ? between(start.alpha(), end.alpha()) : alpha);
}

}  // namespace vantrel::palette
