#pragma once

#include <optional>
#include <string>

#include "store/Planning.h"

namespace vantrel {

/// The day of a plan in words, counted at its place: "tomorrow"; with the day on this device if
/// that differs: "tomorrow, today here". `nullopt` for a plan without a date. `weekdays` as in
/// `relativeDayText`. Main thread only.
std::optional<std::string> dayWords(const Planning& plan, bool weekdays = true);

}  // namespace vantrel
