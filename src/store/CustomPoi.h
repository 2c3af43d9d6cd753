#pragma once

#include "store/PlacedObject.h"

namespace vantrel {

/// A point of interest of the photographer's own: entity "CustomPoi" of the main store.
class CustomPoi : public PlacedObject {};

}  // namespace vantrel
