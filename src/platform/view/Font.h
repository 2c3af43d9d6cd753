#pragma once

namespace vantrel {

/// The system font in regular or bold; `size` is in logical pixels at text scale 1.
struct Font {
  double size = 15;
  bool bold = false;
  static Font systemFontOfSize(double size) { return {size, false}; }
  static Font boldSystemFontOfSize(double size) { return {size, true}; }
  friend bool operator==(const Font&, const Font&) = default;
};

}  // namespace vantrel
