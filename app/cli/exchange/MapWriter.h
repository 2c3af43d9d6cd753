#pragma once

#include <cstddef>

#include "cli/Console.h"
#include "cli/plan/PlanSelection.h"

namespace vantrel::cli {

/// Plans for maps.

/// GPX 1.1: a waypoint for each plan, with name, notes, its instant, and its wall time and zone as
/// comment. Plans without a place are left out; gives their number.
std::size_t writeGpx(const Plans& plans, const TextSink& print);

/// KML 2.2: a placemark for each plan, with identifier and zone as extended data, and a point where
/// the plan has a place.
void writeKml(const Plans& plans, const TextSink& print);

}  // namespace vantrel::cli
