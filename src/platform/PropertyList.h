#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Date.h"
#include "base/Error.h"

namespace vantrel {

using Data = std::vector<std::byte>;

}  // namespace vantrel
