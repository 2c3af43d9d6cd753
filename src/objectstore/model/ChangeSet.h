#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "objectstore/model/EntityDescription.h"
#include "objectstore/model/Value.h"

namespace vantrel {

/// The object of a to-one relationship: a stored row, or one inserted in the same save.
struct RowReference {
  const EntityDescription* entity = nullptr;
  std::int64_t key = 0;                 ///< 0 for none.
  std::optional<std::size_t> inserted;  ///< Index in ChangeSet::inserted.
};

/// The changed values of a row, by slot.
struct RowChange {
  const EntityDescription* entity = nullptr;
  std::int64_t key = 0;      ///< 0 for a row to be inserted.
  std::int64_t version = 0;  ///< The row's Z_OPT when it was read.
  std::vector<std::pair<std::size_t, Value>> values;
  std::vector<std::pair<std::size_t, RowReference>> references;
};

/// The changes that one save writes.
struct ChangeSet {
  std::vector<RowChange> inserted;
  std::vector<RowChange> updated;
  std::vector<RowChange> deleted;  ///< Without values.
};

}  // namespace vantrel
