#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace vantrel {

/// Replaces each "%@" of `format`, left to right, by the next of `arguments`; placeholders beyond
/// the arguments stay, and an argument's own "%@" is text. Nothing else in `format` has a meaning,
/// so that a text from a string table can be used.
std::string stringWithFormat(std::string_view format,
                             std::initializer_list<std::string_view> arguments);

}  // namespace vantrel
