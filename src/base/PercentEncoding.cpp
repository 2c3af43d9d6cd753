#include "base/PercentEncoding.h"

#include "base/Ascii.h"

namespace vantrel {

std::string percentEncoded(std::string_view text, std::string_view allowed) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string result;
  result.reserve(text.size());
  for (const char c : text) {
    if (allowed.find(c) != std::string_view::npos) {
      result += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      result += '%';
      result += kDigits[byte >> 4];
      result += kDigits[byte & 0xf];
    }
  }
  return result;
}

std::optional<std::string> percentDecoded(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      result += text[i];
      continue;
    }
    if (i + 2 >= text.size()) return std::nullopt;
    const int high = hexDigitValue(static_cast<unsigned char>(text[i + 1]));
    const int low = hexDigitValue(static_cast<unsigned char>(text[i + 2]));
    if (high > 15 || low > 15) return std::nullopt;
    result += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return result;
}

}  // namespace vantrel
