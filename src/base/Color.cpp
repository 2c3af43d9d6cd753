#include "base/Color.h"

#include <array>
#include <cmath>

namespace vantrel {

Color Color::colorWithRed(double red, double green, double blue, double alpha) {
  Color color;
  color.red_ = red;
  color.green_ = green;
  color.blue_ = blue;
  color.alpha_ = alpha;
  return color;
}

Color Color::colorWithWhite(double white, double alpha) {
  Color color = colorWithRed(white, white, white, alpha);
  color.isWhite_ = true;
  return color;
}

// The hexcone model: A. R. Smith, "Color Gamut Transform Pairs", SIGGRAPH 1978.
Color Color::colorWithHue(double hue, double saturation, double brightness, double alpha) {
  const double turn = hue - std::floor(hue);
  // A tiny negative hue rounds up to 1; an infinite or NaN hue is NaN here.
  const double sector = turn < 1 ? turn * 6 : 0;
  const int index = static_cast<int>(sector);
  const double fraction = sector - index;
  const double p = brightness * (1 - saturation);
  const double q = brightness * (1 - saturation * fraction);
  const double t = brightness * (1 - saturation * (1 - fraction));
  const std::array<std::array<double, 3>, 6> sectors{{{brightness, t, p},
                                                      {q, brightness, p},
                                                      {p, brightness, t},
                                                      {p, q, brightness},
                                                      {t, p, brightness},
                                                      {brightness, p, q}}};
  const auto& [red, green, blue] = sectors[static_cast<std::size_t>(index)];
  return colorWithRed(red, green, blue, alpha);
}

Color Color::dynamicColor(const Color& light, const Color& dark) {
  Color color = light;
  color.dark_ = std::make_shared<const Color>(dark);
  return color;
}

bool operator==(const Color& a, const Color& b) {
  const bool isSameInDark = a.dark_ && b.dark_ ? *a.dark_ == *b.dark_ : a.dark_ == b.dark_;
  return isSameInDark && a.isWhite_ == b.isWhite_ && a.red_ == b.red_ && a.green_ == b.green_ &&
         a.blue_ == b.blue_ && a.alpha_ == b.alpha_;
}

}  // namespace vantrel
