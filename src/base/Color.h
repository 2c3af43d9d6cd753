#pragma once

#include <memory>

namespace vantrel {

/// A colour in the default RGB space: red, green, blue and alpha, or white level and alpha.
/// Components are fractions, 0 to 1, never clamped. A value.
class Color {
 public:
  static Color colorWithRed(double red, double green, double blue, double alpha);
  static Color colorWithWhite(double white, double alpha);
  /// Hue, saturation and brightness as fractions of 1. Whole turns of the hue are ignored; a hue
  /// that is infinite or NaN counts as 0.
  static Color colorWithHue(double hue, double saturation, double brightness, double alpha);
  static Color whiteColor() { return colorWithWhite(1, 1); }
  static Color blackColor() { return colorWithWhite(0, 1); }
  /// A colour that resolves to `dark` in the dark interface style and to `light` otherwise.
  static Color dynamicColor(const Color& light, const Color& dark);

  /// 4 for red, green, blue, alpha; 2 for white and alpha.
  int numberOfComponents() const { return isWhite_ ? 2 : 4; }
  double red() const { return red_; }
  double green() const { return green_; }
  double blue() const { return blue_; }
  double white() const { return red_; }
  double alpha() const { return alpha_; }

  /// The colour to draw with in the given interface style.
  const Color& resolvedColor(bool dark) const { return dark && dark_ ? *dark_ : *this; }

  friend bool operator==(const Color& a, const Color& b);

 private:
  double red_ = 0;
  double green_ = 0;
  double blue_ = 0;
  double alpha_ = 1;
  bool isWhite_ = false;
  std::shared_ptr<const Color> dark_;  // the twin for the dark style; null when there is none
};

}  // namespace vantrel
