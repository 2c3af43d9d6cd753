#pragma once

#include <string>

#include "cli/Console.h"
#include "cli/today/TodayList.h"

namespace vantrel::cli {

/// What the widget shows, as text; every one ends with a line break.

/// Two lines for each row, as on the card, and what a plan's date is on the clock here.
std::string todayText(const TodayList& today, const Console& console);

/// One line: the next plan to begin, else the last of those that have begun, else the message.
std::string nextPlanLine(const TodayList& today);

/// One line of JSON as status bars read it: "text" and "tooltip" in their markup, "class" and "alt"
/// both "today", "later", "started" (all have begun) or "none". Without plans the text is empty,
/// and the message in the tooltip.
std::string barLine(const TodayList& today);
/// The same for a failure, of the class "error".
std::string barLine(const Error& error);

}  // namespace vantrel::cli
