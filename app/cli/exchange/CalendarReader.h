#pragma once

#include <string_view>

#include "cli/exchange/PlanDraft.h"

namespace vantrel::cli {

/// Plans from an iCalendar text (RFC 5545): one for each event, and for each to-do, by its start or
/// else when it is due. SUMMARY is the name, DESCRIPTION the notes, GEO the place, UID the
/// identifier; what the text lacks is left as it is. A LOCATION that is "latitude, longitude" is
/// the place where GEO says nothing better, any other is the last line of the notes. A time without
/// a zone is wall time of the plan's; an event for a whole day begins with it. Of an event that
/// repeats the first time is planned; times changed later, and what was cancelled, are left out.
Expected<PlanDrafts> draftsFromCalendar(std::string_view text, const ProgressReport& progress);

}  // namespace vantrel::cli
