#pragma once

#include <optional>

#include "platform/archive/PropertyList.h"

namespace vantrel {

/// Whether the data starts like a binary property list.
bool isBinaryPropertyList(std::span<const std::byte> data);

/// Reads the binary form in linear time; `nullopt` if it is damaged or beyond PropertyList's
/// limits. A set is damage: no property list holds one.
std::optional<PropertyList> propertyListWithBinary(std::span<const std::byte> data);

/// Writes the binary form: integers in the fewest bytes, and equal scalars once.
Data binaryWithPropertyList(const PropertyList& list);

}  // namespace vantrel
