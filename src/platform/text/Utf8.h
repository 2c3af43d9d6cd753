#pragma once

#include <cstddef>
#include <string_view>

namespace vantrel {

/// Whether all of a text is UTF-8: nothing overlong, no halves of pairs.
bool isUtf8(std::string_view text);

/// The first `count` code points of the text, or all of it if it is shorter.
std::string_view beginning(std::string_view text, std::size_t count);

}  // namespace vantrel
