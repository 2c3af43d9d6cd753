#pragma once

#include "store/PlacedObject.h"

namespace vantrel {

/// A custom point of interest of the main store.
class CustomPoi : public PlacedObject {
 public:
  static constexpr const char* kEntityName = "CustomPoi";
};

}  // namespace vantrel
