#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "base/Date.h"

namespace vantrel {

/// An attribute's value. Absent (nil) is std::monostate; booleans and integers of all widths are
/// std::int64_t; single precision is widened to double, bit-exactly; URIs are text; UUIDs, binaries
/// and transformables are bytes.
using Value =
    std::variant<std::monostate, std::int64_t, double, std::string, Date, std::vector<std::byte>>;

}  // namespace vantrel
