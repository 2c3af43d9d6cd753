#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "base/Date.h"

namespace vantrel {

/// An attribute's value. std::monostate is absent (nil); booleans and integers of any width are
/// std::int64_t; single precision is widened to double exactly; URIs are text; UUIDs, binary and
/// transformable values are bytes.
using Value =
    std::variant<std::monostate, std::int64_t, double, std::string, Date, std::vector<std::byte>>;

}  // namespace vantrel
