#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "base/Date.h"

namespace vantrel::cli {

using Json = nlohmann::ordered_json;

/// Returns indented JSON that is safe for a terminal, with a line break at the end. Invalid UTF-8
/// becomes U+FFFD; numbers that are not finite become null.
std::string jsonText(const Json& json);
/// The same on one line.
std::string jsonLine(const Json& json);

/// Returns the date in ISO 8601 with the offset; null for `nullopt`, and for years with more than
/// four digits.
Json jsonOfDate(std::optional<Date> date, int offsetSeconds = 0);

/// Returns the shortest decimal number that converts back to `value`: 100.6, where a cast gives
/// 100.5999984741211.
double decimalOfFloat(float value);

/// Returns `value`, or null for `nullopt`. A template, so that only its callers need the complete
/// type.
template <typename T, typename CompleteJson = Json>
CompleteJson orNull(const std::optional<T>& value) {
  return value ? CompleteJson(*value) : CompleteJson(nullptr);
}

}  // namespace vantrel::cli
