#pragma once

#include <string>

namespace vantrel {

/// Shows a line as one of the desktop's notices: for a program that was started without a terminal
/// and has no window to tell it in. Does nothing where standard error is a terminal, or where there
/// is nobody to show it. Needs no application object.
void showNotice(const std::string& text);

}  // namespace vantrel
