#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <span>
#include <string>

#include "base/Error.h"

namespace vantrel {

/// The UTF-8 texts of one language by key.
using StringTable = std::map<std::string, std::string, std::less<>>;

/// Parses a .strings file: a property list, of which only strings are used, or text in UTF-8, or in
/// UTF-16 with a byte order mark:
///
///     /* comment */  "key" = "value";  // comment
///     word = plain.word;               // Simple words need no quotes.
///     "empty";                         // The same as "empty" = "";
///
/// The last of equal keys counts. Errors: domain "StringTable", with the line of the damage, or
/// "PropertyList".
Expected<StringTable> stringTableWithData(std::span<const std::byte> data);

}  // namespace vantrel
