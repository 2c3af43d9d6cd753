#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/Console.h"
#include "platform/text/TimeZone.h"
#include "store/Planning.h"

namespace vantrel::cli {

class PlanSource;

/// Plans as text for people, safe for a terminal; unknown values are "--".

/// Returns the zone of the plan's date: its own, otherwise the device's.
TimeZone zoneOfPlan(const Planning& plan);

/// "41.39000, 2.17000"
std::string placeText(std::optional<double> latitude, std::optional<double> longitude);

/// The wall time in `zone`: "2026-07-15 23:40"; with seconds unless they are 0.
std::string wallText(Date date, const TimeZone& zone);

/// The wall time of the device, "23:40 here", with the day if that differs; `nullopt` if it is the
/// same as in `zone`.
std::optional<std::string> hereText(Date date, const TimeZone& zone);

/// Both wall times: "2026-07-16 12:00 (05:00 here)".
std::string whenText(const std::optional<Date>& date, const TimeZone& zone);

/// All attributes of the plan, one per line.
std::string planDetails(const Planning& plan, const Console& console);

/// Prints an aligned line for each plan: wall time, day in words on a terminal, name, zone,
/// device's wall time, identifier. Returns their number.
std::size_t printTable(PlanSource& plans, Console& console);

/// A line for programs, the same in every locale, with columns separated by tabs: identifier (or
/// URI), instant, instant with the offset of the plan's zone, zone, latitude, longitude, name;
/// unknown values are empty. New columns are added at the end.
std::string plainLine(const Planning& plan);

/// A line with the full identifier, for plans whose identifiers have a common prefix.
std::string candidateText(const Planning& plan);

}  // namespace vantrel::cli
