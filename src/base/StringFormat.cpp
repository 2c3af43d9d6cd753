#include "base/StringFormat.h"

#include <array>
#include <charconv>
#include <limits>

namespace vantrel {

std::string stringWithFormat(std::string_view format,
                             std::initializer_list<std::string_view> arguments) {
  constexpr std::string_view kPlaceholder = "%@";
  std::string result;
  for (const auto argument : arguments) {
    const auto at = format.find(kPlaceholder);
    if (at == std::string_view::npos) break;
    result.append(format.substr(0, at)).append(argument);
    format.remove_prefix(at + kPlaceholder.size());
  }
  return result.append(format);
}

std::string decimalText(double number, int decimals) {
  // The greatest number, a sign, a point and 17 decimals fit.
  std::array<char, std::numeric_limits<double>::max_exponent10 + 20> text{};
  const auto written = std::to_chars(text.data(), text.data() + text.size(), number,
                                     std::chars_format::fixed, decimals);
  return {text.data(), written.ptr};
}

}  // namespace vantrel
