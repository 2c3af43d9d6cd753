#pragma once

#include <optional>

#include "platform/archive/PropertyList.h"

namespace vantrel {

/// The first bytes of a binary property list. After them come the objects, the table of their
/// offsets, and a trailer of 32 bytes with the number of objects and the position of the table. An
/// object is a byte of type and size and its content; arrays and dictionaries contain the numbers
/// of other objects. {"a": true} is:
///
///     d1 01 02            object 0: a dictionary of 1 key, object 1, and its value, object 2
///     51 61               object 1: "a", ASCII of 1 byte
///     09                  object 2: true
///     08 0b 0d            the table
constexpr std::string_view kBinaryPropertyListMark = "bplist00";

/// Parses a binary property list, which must begin with the mark. `nullopt` if it is damaged or
/// exceeds the limits of `PropertyList`. Sets are read as arrays.
std::optional<PropertyList> propertyListWithBinary(std::span<const std::byte> data);

/// Returns the binary form, with integers in the fewest bytes and equal scalars as one object.
Data binaryWithPropertyList(const PropertyList& list);

}  // namespace vantrel
