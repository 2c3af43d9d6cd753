#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"
#include "base/LocationCoordinate2D.h"
#include "objectstore/model/Value.h"
#include "store/Planning.h"

namespace vantrel::cli {

/// What the formats for other programs share.

/// The fewest digits that read back to the same number, never with an exponent.
std::string decimalText(double number);

/// The text as any format of ours may hold it: valid UTF-8 with U+FFFD for each control character
/// except tabs and line breaks, and for each noncharacter that XML 1.0 forbids.
std::string fileText(std::string_view text);

/// What a calendar keeps of a text: no control characters, and one kind of line break.
std::string calendarText(std::string_view text);
/// What is read of that: no blanks at either end.
std::string readCalendarText(std::string_view text);
/// Whether a calendar rounds `stored` to `read`.
bool isSameRounded(const Value& stored, const Value& read);

/// The plan's place where it has one on the globe.
std::optional<LocationCoordinate2D> placeOfPlan(const Planning& plan);

/// The plan's date in ISO 8601, in UTC, or as wall time of the zone it is told in with the offset
/// behind; empty when it has none within four digits of years.
std::string instantText(const Planning& plan);
std::string localText(const Planning& plan);

}  // namespace vantrel::cli
