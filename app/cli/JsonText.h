#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

namespace vantrel::cli {

using Json = nlohmann::ordered_json;

/// The answer as programs read it: indented, safe for a terminal, with a line break at the end.
/// Bytes that are no UTF-8 become U+FFFD, numbers that are not finite null.
std::string jsonText(const Json& json);
/// The same on one line.
std::string jsonLine(const Json& json);

/// The shortest decimal number that single precision reads back as `value`: 100.6, where mere
/// widening gives 100.5999984741211.
double decimalOfFloat(float value);

/// The value, or null for none. Only who calls it needs the whole of the library.
template <typename T, typename Whole = Json>
Whole orNull(const std::optional<T>& value) {
  return value ? Whole(*value) : Whole(nullptr);
}

}  // namespace vantrel::cli
