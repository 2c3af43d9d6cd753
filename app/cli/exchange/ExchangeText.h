#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"
#include "base/LocationCoordinate2D.h"
#include "objectstore/model/Value.h"
#include "store/Planning.h"

namespace vantrel::cli {

/// Returns the shortest decimal text that converts back to `number`, without an exponent.
std::string decimalText(double number);

/// Returns `text` as calendars store it: without control characters, line breaks as "\n".
std::string calendarText(std::string_view text);
/// Returns `text` as it is after export to a calendar and import: also trimmed.
std::string readCalendarText(std::string_view text);
/// Whether `read` is what a calendar keeps of `stored`.
bool isSameRounded(const Value& stored, const Value& read);

/// `nullopt` unless the plan has valid coordinates.
std::optional<LocationCoordinate2D> placeOfPlan(const Planning& plan);

/// Returns the plan's date in ISO 8601, in UTC, or in the plan's zone with its offset; empty if
/// there is none or its year has more than four digits.
std::string instantText(const Planning& plan);
std::string localText(const Planning& plan);

}  // namespace vantrel::cli
