#pragma once

#include <string>

#include "cli/Console.h"
#include "cli/today/TodayList.h"

namespace vantrel::cli {

/// The widget as text, with a line break at the end.

/// Two lines for each row, as in the widget, with the device's wall time if that differs.
std::string todayText(const TodayList& today, const Console& console);

/// One line: the next plan to begin, otherwise the last that has begun, otherwise the message.
std::string nextPlanLine(const TodayList& today);

/// One line of JSON for status bars: "text" and "tooltip" with markup; "class" and "alt" are
/// "today", "later", "started" (all have begun) or "none". Without plans, "text" is empty and
/// "tooltip" is the message.
std::string barLine(const TodayList& today);
/// The same for an error; "class" is "error".
std::string barLine(const Error& error);

}  // namespace vantrel::cli
