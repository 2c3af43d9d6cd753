#pragma once

#include <libical/ical.h>

#include <memory>
#include <string_view>
#include <vector>

#include "exchange/PlanDraft.h"

namespace vantrel::cli {

struct FreeCalendarComponent {
  void operator()(icalcomponent* component) const { icalcomponent_free(component); }
};
using CalendarComponent = std::unique_ptr<icalcomponent, FreeCalendarComponent>;

/// The name under which the place of an event is found as it was written: the library takes
/// "41;nowhere" for a place, too.
inline constexpr std::string_view kPlaceProperty = "X-VANTREL-GEO";

/// The calendars of a file: of each the zones, events and to-dos, with the properties that plans
/// are made of and no others. What a file holds besides is dropped before the library sees it, so
/// that neither its depth nor its size matters. Fails where components do not match, and beyond
/// kMostPlansRead.
Expected<std::vector<CalendarComponent>> calendarsOfText(std::string_view text,
                                                         const ProgressReport& progress);

}  // namespace vantrel::cli
