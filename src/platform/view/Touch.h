#pragma once

#include "base/Geometry.h"

namespace vantrel {

/// A finger or the pointer on a view, in the view's coordinates.
struct Touch {
  Point location;
};

}  // namespace vantrel
