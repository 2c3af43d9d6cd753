#pragma once

#include <optional>

#include "platform/archive/PropertyList.h"

namespace vantrel {

/// The first bytes of the binary form.
constexpr std::string_view kBinaryPropertyListMark = "bplist00";

/// Reads the binary form, whose first bytes the caller has checked; `nullopt` if it is damaged or
/// beyond PropertyList's limits. A set reads as an array.
std::optional<PropertyList> propertyListWithBinary(std::span<const std::byte> data);

/// Writes the binary form: integers in the fewest bytes, and equal scalars once.
Data binaryWithPropertyList(const PropertyList& list);

}  // namespace vantrel
