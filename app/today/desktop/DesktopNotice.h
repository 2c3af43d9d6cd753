#pragma once

#include <string>

namespace vantrel {

/// Shows a notification of the desktop, for a program that was started without a terminal and has
/// no window. Does nothing if standard error is a terminal or there is no notification server.
/// Needs no application object.
void showNotice(const std::string& text);

}  // namespace vantrel
