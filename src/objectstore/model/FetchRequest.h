#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "objectstore/model/Predicate.h"

namespace vantrel {

struct SortDescriptor {
  std::string key;
  bool ascending = true;
};

/// Which objects of an entity (and of its sub-entities) to fetch. Without sort descriptors, and
/// among equals, the order is that of the rows' keys; absent values come first ascending.
struct FetchRequest {
  std::string entityName;
  std::optional<Predicate> predicate = {};
  std::vector<SortDescriptor> sortDescriptors = {};
  std::size_t fetchLimit = 0;  ///< 0 is no limit.
};

}  // namespace vantrel
