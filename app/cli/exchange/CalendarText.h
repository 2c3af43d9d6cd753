#pragma once

#include <libical/ical.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cli/exchange/PlanDraft.h"

namespace vantrel::cli {

struct FreeCalendarComponent {
  void operator()(icalcomponent* component) const { icalcomponent_free(component); }
};
using CalendarComponent = std::unique_ptr<icalcomponent, FreeCalendarComponent>;

/// Throws std::bad_alloc unless `bytes` can be allocated. Called before libical, which crashes if
/// it cannot allocate memory.
void ensureMemory(std::size_t bytes);
/// Returns an upper bound of what libical needs for a line, or a component with texts, of `size`
/// bytes.
std::size_t memoryForText(std::size_t size);
/// An upper bound of what libical needs for a zone with the most rules.
inline constexpr std::size_t kMemoryForZone = std::size_t{16} << 20;

/// Holds the unparsed text of GEO: libical also accepts "41;nowhere".
inline constexpr std::string_view kPlaceProperty = "X-VANTREL-GEO";

/// A custom property for values that no standard property can hold: the plan's JSON keys and
/// values, percent-encoded.
inline constexpr std::string_view kValuesProperty = "X-VANTREL-VALUES";

struct CalendarText {
  /// The calendar with its zones only.
  CalendarComponent zones;
  /// The lines of each event and to-do, unfolded: libical needs ten times their memory.
  std::vector<std::string> entries;
};

/// Parses an entry of CalendarText.
CalendarComponent componentOfText(const std::string& lines);

/// Returns the calendars of a file with their zones, events and to-dos; each of these has only the
/// first of each property that plans use. The rest is dropped before libical sees it, so that its
/// depth and size do not matter. Errors: kExitBadData for unbalanced components or more than 16
/// levels of them, a used property that is not UTF-8 or longer than 1 MiB, more than kMostPlansRead
/// entries, or zones with more than 20,000 lines or 1,000 rules in total.
Expected<std::vector<CalendarText>> calendarsOfText(std::string_view text,
                                                    const ProgressReport& progress);

}  // namespace vantrel::cli
