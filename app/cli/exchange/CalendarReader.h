#pragma once

#include <string_view>

#include "cli/exchange/PlanDraft.h"

namespace vantrel::cli {

/// Reads a plan from each event and to-do of an iCalendar text (RFC 5545). Its date is the start,
/// otherwise the due time; SUMMARY is the name, DESCRIPTION the notes, GEO the place, UID the
/// identifier. A LOCATION "latitude, longitude" is the place unless GEO has another; any other
/// LOCATION is appended to the notes. A time without a zone is a wall time of the plan's zone; an
/// all-day event begins at midnight. Only the first occurrence of a repeating event is read; its
/// changed occurrences and cancelled events are left out. Errors: kExitBadData.
Expected<PlanDrafts> draftsFromCalendar(std::string_view text, const ProgressReport& progress);

}  // namespace vantrel::cli
