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

/// Selects objects of an entity and its subentities. Rows with equal sort values, or all without
/// sort descriptors, are ordered by key. In ascending order absent values come first.
struct FetchRequest {
  std::string entityName;
  std::optional<Predicate> predicate = {};
  std::vector<SortDescriptor> sortDescriptors = {};
  std::size_t fetchLimit = 0;  ///< 0 for no limit.
};

}  // namespace vantrel
