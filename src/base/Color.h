#pragma once

#include <memory>

namespace vantrel {

/// A colour in the default RGB space: red, green, blue and alpha, or white level and alpha.
/// Components range from 0 to 1 and are not clamped. An immutable value.
class Color {
 public:
  static Color colorWithRed(double red, double green, double blue, double alpha);
  static Color colorWithWhite(double white, double alpha);
  /// All components range from 0 to 1; of the hue, only the fraction counts. An infinite or NaN hue
  /// is 0.
  static Color colorWithHue(double hue, double saturation, double brightness, double alpha);
  static Color whiteColor() { return colorWithWhite(1, 1); }
  static Color blackColor() { return colorWithWhite(0, 1); }
  /// A colour that resolves to `dark` in the dark interface style and to `light` otherwise.
  static Color dynamicColor(const Color& light, const Color& dark);

  /// 4 for red, green, blue and alpha; 2 for white and alpha.
  int numberOfComponents() const { return isWhite_ ? 2 : 4; }
  double red() const { return red_; }
  double green() const { return green_; }
  double blue() const { return blue_; }
  double white() const { return red_; }
  double alpha() const { return alpha_; }

  const Color& resolvedColor(bool dark) const { return dark && dark_ ? *dark_ : *this; }

  friend bool operator==(const Color& a, const Color& b);

 private:
  double red_ = 0;
  double green_ = 0;
  double blue_ = 0;
  double alpha_ = 1;
  bool isWhite_ = false;
  std::shared_ptr<const Color> dark_;  ///< Null if the colour is the same in the dark style.
};

}  // namespace vantrel
