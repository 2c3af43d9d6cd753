#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "base/Error.h"

namespace vantrel {

/// How long before a shoot to remind of it, in the program's settings (key "reminders", such as
/// "1d,30m"). Main thread only.

/// Reads the stored lead times in ascending order; empty if reminders are off.
std::vector<std::chrono::minutes> storedLeadTimes();
/// Stores them; empty turns reminders off. Errors: those of UserDefaults.
Expected<void> storeLeadTimes(const std::vector<std::chrono::minutes>& leadTimes);

}  // namespace vantrel
