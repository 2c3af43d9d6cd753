#pragma once

namespace vantrel {

/// Coordinates and lengths in logical pixels; y grows downward.
struct Point {
  double x = 0;
  double y = 0;
  friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
  double width = 0;
  double height = 0;
  friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
  Point origin;
  Size size;
  double right() const { return origin.x + size.width; }
  double bottom() const { return origin.y + size.height; }
  bool contains(Point p) const {
    return p.x >= origin.x && p.x < right() && p.y >= origin.y && p.y < bottom();
  }
  friend bool operator==(const Rect&, const Rect&) = default;
};

struct EdgeInsets {
  double top = 0;
  double left = 0;
  double bottom = 0;
  double right = 0;
  friend bool operator==(const EdgeInsets&, const EdgeInsets&) = default;
};

}  // namespace vantrel
