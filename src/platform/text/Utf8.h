#pragma once

#include <string_view>

namespace vantrel {

/// Whether all of a text is UTF-8: nothing overlong, no halves of pairs.
bool isUtf8(std::string_view text);

}  // namespace vantrel
