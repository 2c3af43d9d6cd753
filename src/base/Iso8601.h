#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"

namespace vantrel {

/// Returns "2024-06-21T03:30:00Z", or "2024-06-21T05:30:00+02:00" for an offset of 7200 seconds
/// from UTC. A fraction of a second has the fewest digits that read back as the same instant; zero
/// is left out. The calendar is the proleptic Gregorian one. Empty for instants outside the years
/// -9999 to 9999.
std::string iso8601String(Date date, int offsetSeconds = 0);
/// Whether `iso8601String` returns a text for `date` in UTC.
bool hasIso8601String(Date date);

/// Reads "[-]YYYY-MM-DDTHH:MM[:SS[.fraction]]" followed by "Z" or an offset: "+02:00", "+0200" or
/// "+02". `nullopt` for other texts, texts without an offset and fields out of range.
std::optional<Date> dateFromIso8601String(std::string_view text);

/// A local date and time, to be placed in a time zone.
struct WallTime {
  int year = 0;
  int month = 1;
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;
};
/// Reads a date with or without a time, and without an offset: "2024-06-21", "2024-06-21T05:30",
/// "2024-06-21 05:30:00". `nullopt` for other texts and fields out of range.
std::optional<WallTime> wallTimeFromIso8601String(std::string_view text);

}  // namespace vantrel
