#pragma once

#include <functional>
#include <string_view>

namespace vantrel::cli {

/// Takes a text piece by piece.
using TextSink = std::function<void(std::string_view)>;

}  // namespace vantrel::cli
