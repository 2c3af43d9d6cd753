#pragma once

#include "cli/Console.h"
#include "cli/plan/PlanSelection.h"

namespace vantrel::cli {

/// The plans as an iCalendar file (RFC 5545): an event for each, whose UID is the plan's
/// identifier, with the zone's rules where it names one and in UTC otherwise. A plan without a date
/// becomes a to-do. The format has no fractions of seconds and keeps places to six decimals;
/// LOCATION has them all.
void writeCalendar(const Plans& plans, const TextSink& print);

}  // namespace vantrel::cli
