#pragma once

#include <cstddef>
#include <optional>

#include "objectstore/model/EntityDescription.h"
#include "objectstore/model/Predicate.h"
#include "objectstore/model/RowSnapshot.h"
#include "objectstore/model/Value.h"

namespace vantrel {

/// Converts `value` to the form in which an attribute of `type` stores it: integers become doubles
/// for real attributes, doubles are narrowed to single precision for kFloat. Absent values are
/// valid for every type. `nullopt` if the kind does not fit, an integer is out of range, or a
/// double or date is NaN.
std::optional<Value> coercedValue(AttributeType type, const Value& value);

/// Whether values of the type are read from the store on each access, because they are too big to
/// be kept in memory with the object.
constexpr bool isReadOnDemand(AttributeType type) {
  return type == AttributeType::kBinary || type == AttributeType::kTransformable;
}

/// The value in a snapshot's slot. Absent for a type that is read on demand.
Value valueInSlot(AttributeType type, const RowSnapshot& row, std::size_t slot);
/// Stores `value`, which must be of the slot's type (see `coercedValue`).
void setValueInSlot(const Value& value, RowBuilder& row, std::size_t slot);

/// Returns < 0, 0 or > 0, in the order in which SQLite sorts a column: absent first, texts and
/// bytes byte by byte.
int compareValues(const Value& a, const Value& b);

/// Whether an attribute's `value` satisfies the predicate's comparison with `wanted`.
bool matches(Predicate::Operator op, const Value& value, const Value& wanted);

}  // namespace vantrel
