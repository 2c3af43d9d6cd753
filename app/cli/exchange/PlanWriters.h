#pragma once

#include <cstddef>

#include "cli/Console.h"
#include "cli/plan/PlanSelection.h"

namespace vantrel::cli {

/// Writes an iCalendar file (RFC 5545): an event for each plan, or a to-do if it has no date. UID
/// is the plan's identifier; times are in the plan's zone, with its rules, or in UTC if it has
/// none. The format has no fractions of seconds; GEO has six decimals, LOCATION has all.
void writeCalendar(PlanSource& plans, const TextSink& print);

/// Writes comma-separated values (RFC 4180) in UTF-8 with a header line. Texts that a spreadsheet
/// would read as a formula get an apostrophe in front.
void writeCsv(PlanSource& plans, const TextSink& print);

/// Writes GPX 1.1: a waypoint for each plan with a place; the comment is its wall time and zone.
/// Returns the number of plans without a place, which are left out.
std::size_t writeGpx(PlanSource& plans, const TextSink& print);

/// Writes KML 2.2: a placemark for each plan, with identifier and zone as extended data, and with a
/// point if it has a place.
void writeKml(PlanSource& plans, const TextSink& print);

}  // namespace vantrel::cli
