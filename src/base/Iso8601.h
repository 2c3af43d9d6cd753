#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"

namespace vantrel {

/// "2024-06-21T03:30:00Z"; the wall time at `offsetSeconds` from UTC with "+02:00" behind it when
/// that is not 0. A fraction of a second is written only when non-zero, with the fewest digits that
/// read back to the same instant. The proleptic Gregorian calendar; an instant outside the years
/// -9999 to 9999, or not finite, gives an empty text.
std::string iso8601String(Date date, int offsetSeconds = 0);
/// Whether that text is not empty, in UTC.
bool hasIso8601String(Date date);

/// An instant from "[-]YYYY-MM-DDTHH:MM[:SS[.fraction]]" with "Z" or an offset ("+02:00", "+0200",
/// "+02") behind it. Nothing for any other text, for fields out of range and without an offset.
std::optional<Date> dateFromIso8601String(std::string_view text);

/// The same without an offset, read as wall time: the parts, to be placed in a time zone. The time
/// may be left out ("2024-06-21" is its midnight).
struct WallTime {
  int year = 0;
  int month = 1;
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;
};
std::optional<WallTime> wallTimeFromIso8601String(std::string_view text);

}  // namespace vantrel
