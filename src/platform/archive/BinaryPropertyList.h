#pragma once

#include <optional>

#include "platform/archive/PropertyList.h"

namespace vantrel {

/// Whether the data starts like a binary property list.
bool isBinaryPropertyList(std::span<const std::byte> data);

enum class RealSize : std::uint8_t { kAsStored, kAlways64 };

/// Reads the binary form in linear time; `nullopt` if it is damaged or beyond PropertyList's
/// limits. A set is damage: no property list holds one.
std::optional<PropertyList> propertyListWithBinary(std::span<const std::byte> data,
                                                   RealSize realSize = RealSize::kAsStored);

/// Writes the binary form: integers in the fewest bytes, and equal scalars once.
Data binaryWithPropertyList(const PropertyList& list);

}  // namespace vantrel
