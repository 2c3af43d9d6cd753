#include "cli/JsonText.h"

#include <array>
#include <charconv>
#include <nlohmann/json.hpp>

#include "base/Iso8601.h"
#include "common/TerminalText.h"

namespace vantrel::cli {

std::string jsonText(const Json& json) {
  constexpr int kIndent = 2;
  return printableJson(json.dump(kIndent, ' ', false, Json::error_handler_t::replace)) + "\n";
}

std::string jsonLine(const Json& json) {
  return printableJson(json.dump(-1, ' ', false, Json::error_handler_t::replace)) + "\n";
}

Json jsonOfDate(std::optional<Date> date, int offsetSeconds) {
  const std::string text = date ? iso8601String(*date, offsetSeconds) : std::string();
  return text.empty() ? Json(nullptr) : Json(text);
}

double decimalOfFloat(float value) {
  std::array<char, 64> digits{};
  const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  double decimal = value;
  std::from_chars(digits.data(), written.ptr, decimal);
  return decimal;
}

}  // namespace vantrel::cli
