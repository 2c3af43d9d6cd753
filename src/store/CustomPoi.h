#pragma once

#include "store/PlacedObject.h"

namespace vantrel {

/// A custom point of interest of the main store.
class CustomPoi : public PlacedObject {
 public:
  /// The name of the entity in the model.
  static constexpr const char* kEntityName = "CustomPoi";
};

}  // namespace vantrel
