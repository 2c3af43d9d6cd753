#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "objectstore/model/EntityDescription.h"
#include "objectstore/model/Value.h"

namespace vantrel {

/// The target of a to-one relationship: a stored row, or one that is inserted in the same save.
struct RowReference {
  const EntityDescription* entity = nullptr;
  std::int64_t key = 0;                 ///< 0 for none.
  std::optional<std::size_t> inserted;  ///< Its position among the inserted rows.
};

/// The values of a row that differ from what is stored, by slot.
struct RowChange {
  const EntityDescription* entity = nullptr;
  std::int64_t key = 0;      ///< 0 for a row that is to be inserted.
  std::int64_t version = 0;  ///< The row's Z_OPT when it was read.
  std::vector<std::pair<std::size_t, Value>> values;
  std::vector<std::pair<std::size_t, RowReference>> references;
};

/// What one save writes.
struct ChangeSet {
  std::vector<RowChange> inserted;
  std::vector<RowChange> updated;
  std::vector<RowChange> deleted;  ///< Only what names the row.
};

}  // namespace vantrel
