#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/Console.h"
#include "platform/text/TimeZone.h"
#include "store/Planning.h"

namespace vantrel::cli {

/// Plans as text for people; whatever the plans contain, it is safe for a terminal.

/// The zone that the plan is told in: its own, else the device's.
TimeZone zoneOfPlan(const Planning& plan);

/// "41.39000, 2.17000"; "--" for what is unknown.
std::string placeText(std::optional<double> latitude, std::optional<double> longitude);

/// "2026-07-15 23:40" on that zone's clock; seconds only when there are some.
std::string wallText(Date date, const TimeZone& zone);

/// The device's wall time ("23:40 here", with the day where that differs); nothing when the
/// device's clock shows the same as the zone's.
std::optional<std::string> hereText(Date date, const TimeZone& zone);

/// The wall time of the zone, and what that is here: "2026-07-16 12:00 (05:00 here)"; "--" for
/// none.
std::string whenText(const std::optional<Date>& date, const TimeZone& zone);

/// One plan with everything that is known of it, one line each.
std::string planDetails(const Planning& plan, const Console& console);

/// One line for each plan, in columns: when, what, in which zone, when that is here, identifier.
/// Each is printed before the next is made.
void printTable(const std::vector<std::shared_ptr<Planning>>& plans, Console& console);

/// One line for programs, the same in every locale: identifier (without one, the URI), instant, the
/// same with the offset of the plan's zone, zone, latitude, longitude, name, divided by tabs; what
/// is unknown is empty. More columns may come behind these.
std::string plainLine(const Planning& plan);

/// One line that tells plans of nearly the same identifier apart.
std::string candidateText(const Planning& plan);

}  // namespace vantrel::cli
