#pragma once

namespace vantrel {

/// Enables or disables the start of the window with each session of the user. Returns the exit
/// code; if it is not 0, after one line of error.
int setAutostart(bool on);
/// Whether the start with the session is enabled.
bool isAutostartOn();

}  // namespace vantrel
