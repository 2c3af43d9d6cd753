#pragma once

#include "store/IdentifiedObject.h"

namespace vantrel {

/// A picture of a plan or a point of interest: entity "Image" of the main store.
class Image : public IdentifiedObject {};

}  // namespace vantrel
