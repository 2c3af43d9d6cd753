#pragma once

namespace vantrel {

/// Has the desktop open the window with every session of this user, or no more. Gives the exit
/// code, after one line on standard error when it is not 0.
int setAutostart(bool on);
/// Whether the entry exists.
bool isAutostartOn();

}  // namespace vantrel
