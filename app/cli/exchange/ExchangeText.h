#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"
#include "base/LocationCoordinate2D.h"
#include "store/Planning.h"

namespace vantrel::cli {

/// What the formats for other programs share.

/// The fewest digits that read back to the same number, never with an exponent.
std::string decimalText(double number);

/// The text without what XML 1.0 has no place for (control characters, bytes that are no UTF-8):
/// U+FFFD stands for each.
std::string xmlText(std::string_view text);

/// What a calendar keeps of a text: no control characters, and one kind of line break.
std::string calendarText(std::string_view text);

/// The plan's place where it has one on the globe.
std::optional<LocationCoordinate2D> placeOfPlan(const Planning& plan);

/// The plan's date in ISO 8601, in UTC, or as wall time of the zone it is told in with the offset
/// behind; empty when it has none within four digits of years.
std::string instantText(const Planning& plan);
std::string localText(const Planning& plan);

}  // namespace vantrel::cli
