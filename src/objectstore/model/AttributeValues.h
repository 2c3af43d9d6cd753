#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "objectstore/model/EntityDescription.h"
#include "objectstore/model/Predicate.h"
#include "objectstore/model/RowSnapshot.h"
#include "objectstore/model/Value.h"

namespace vantrel {

/// The value as an attribute of the type keeps it: integers become doubles where those are stored,
/// doubles are narrowed to single precision. Nothing when it is of another kind, out of the type's
/// range, or not a number. Absent suits every attribute.
std::optional<Value> coercedValue(AttributeType type, const Value& value);

/// Whether the values are too big to be kept with each object: they are read when asked for.
constexpr bool isReadOnDemand(AttributeType type) {
  return type == AttributeType::kBinary || type == AttributeType::kTransformable;
}

/// The value in a snapshot's slot. Not for attributes that are read on demand.
Value valueInSlot(AttributeType type, const RowSnapshot& row, std::size_t slot);
/// Puts a value of the attribute's kind into the row that is being built.
void setValueInSlot(const Value& value, RowBuilder& row, std::size_t slot);

/// Below, equal to or above 0, as SQLite orders a column: absent first, texts and bytes by byte.
int compareValues(const Value& a, const Value& b);

/// Whether an attribute's value satisfies the predicate's comparison with `wanted`.
bool matches(Predicate::Operator op, const Value& value, const Value& wanted);

/// The slot of an attribute or of a to-one relationship in a row of the entity.
std::optional<std::size_t> slotOfAttribute(const EntityDescription& entity, std::string_view key);
std::optional<std::size_t> slotOfToOne(const EntityDescription& entity, std::string_view key);
std::size_t slotCount(const EntityDescription& entity);

}  // namespace vantrel
