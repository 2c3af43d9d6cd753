#pragma once

#include "store/IdentifiedObject.h"

namespace vantrel {

/// A picture of a plan or a point of interest of the main store.
class Image : public IdentifiedObject {
 public:
  static constexpr const char* kEntityName = "Image";
};

}  // namespace vantrel
