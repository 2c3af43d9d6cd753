#pragma once

#include <libical/ical.h>

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "cli/exchange/PlanDraft.h"

namespace vantrel::cli {

struct FreeCalendarComponent {
  void operator()(icalcomponent* component) const { icalcomponent_free(component); }
};
using CalendarComponent = std::unique_ptr<icalcomponent, FreeCalendarComponent>;

/// Throws std::bad_alloc unless `bytes` can be allocated. To be called before libical is given
/// work: it crashes when an allocation of its own fails.
void ensureMemory(std::size_t bytes);
/// More than libical needs to read a line or write a component with texts of `size` bytes.
std::size_t memoryForText(std::size_t size);
/// More than libical needs for a zone with the most rules that are read or written.
inline constexpr std::size_t kMemoryForZone = std::size_t{16} << 20;

/// The name under which the place of an event is found as it was written: the library takes
/// "41;nowhere" for a place, too.
inline constexpr std::string_view kPlaceProperty = "X-VANTREL-GEO";

/// Our own property, for values that no other holds: the keys of a plan with their values in JSON,
/// percent-encoded.
inline constexpr std::string_view kValuesProperty = "X-VANTREL-VALUES";

/// The calendars of a file: of each the zones, events and to-dos, with the properties that plans
/// are made of and no others, each once. What a file holds besides is dropped before the library
/// sees it, so that neither its depth nor its size matters. Fails where components do not match or
/// lie more than 16 deep, for such a property that is no UTF-8 or longer than 1 MiB, beyond
/// kMostPlansRead, and where zones have more than 20,000 lines or 1,000 rules between them.
Expected<std::vector<CalendarComponent>> calendarsOfText(std::string_view text,
                                                         const ProgressReport& progress);

}  // namespace vantrel::cli
