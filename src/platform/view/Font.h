#pragma once

namespace vantrel {

/// A system font by its weight and size in points of a desktop at scale 1.
struct Font {
  double size = 15;
  bool bold = false;
  static Font systemFontOfSize(double size) { return {size, false}; }
  static Font boldSystemFontOfSize(double size) { return {size, true}; }
  friend bool operator==(const Font&, const Font&) = default;
};

}  // namespace vantrel
