#include "appearance/Color+Constants.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "platform/system/Device.h"

namespace vantrel::palette {

Color componentBackgroundColor() {
  constexpr int kFirstVersionWithStyles = 13;
  const int version = std::atoi(Device::currentDevice().systemVersion().c_str());
  if (version < kFirstVersionWithStyles) return Color::whiteColor();
  return Color::dynamicColor(Color::whiteColor(), Color::blackColor());
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
    // A tiny negative hue rounds up to 360, which is 0.
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
