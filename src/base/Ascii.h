#pragma once

#include <string>
#include <string_view>

namespace vantrel {

/// Tests and conversions of ASCII characters, independent of the locale. Other characters, such as
/// the bytes of UTF-8 sequences, are neither letters nor digits and are not changed.

template <typename Character>
constexpr bool isAsciiDigit(Character c) {
  return c >= '0' && c <= '9';
}
template <typename Character>
constexpr bool isAsciiLetter(Character c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
/// A letter, a digit or an underscore.
template <typename Character>
constexpr bool isAsciiWordCharacter(Character c) {
  return isAsciiLetter(c) || isAsciiDigit(c) || c == '_';
}
/// Returns 0 to 15, or 16 if `c` is not a hexadecimal digit.
constexpr int hexDigitValue(char32_t c) {
  if (isAsciiDigit(c)) return static_cast<int>(c - '0');
  const char32_t lower = c | 0x20;
  return lower >= 'a' && lower <= 'f' ? static_cast<int>(lower - 'a') + 10 : 16;
}
constexpr char asciiLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}
constexpr char asciiUpper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}

inline std::string asciiLower(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = asciiLower(c);
  return result;
}
inline std::string asciiUpper(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = asciiUpper(c);
  return result;
}

}  // namespace vantrel
