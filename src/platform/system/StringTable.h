#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <span>
#include <string>

#include "base/Error.h"

namespace vantrel {

/// The texts of one language by key, UTF-8.
using StringTable = std::map<std::string, std::string, std::less<>>;

/// Reads the content of a .strings file: text in UTF-8 or, with a byte order mark, UTF-16, or a
/// property list, whose values other than strings are left out. Pairs read
/// `"key" = "value";`; quotes may be left out around plain words, a key alone has an empty text,
/// the last of equal keys wins. Damaged content gives an error of domain "StringTable" that names
/// the line.
Expected<StringTable> stringTableWithData(std::span<const std::byte> data);

}  // namespace vantrel
