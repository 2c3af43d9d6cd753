#pragma once

#include <string>
#include <string_view>

namespace vantrel {

/// A text of the window's own, in the user's language.
std::string localized(std::string_view key);
/// Whether that language is written from right to left.
bool interfaceIsRightToLeft();

}  // namespace vantrel
