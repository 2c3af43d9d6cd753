#pragma once

#include <string>
#include <string_view>

namespace vantrel {

/// Tests and conversions of ASCII characters, independent of the locale. Other bytes, such as those
/// of UTF-8 sequences, are neither letters nor digits and stay as they are.

constexpr bool isAsciiDigit(char c) {
  return c >= '0' && c <= '9';
}
constexpr bool isAsciiLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
/// A letter, a digit or an underscore.
constexpr bool isAsciiWordCharacter(char c) {
  return isAsciiLetter(c) || isAsciiDigit(c) || c == '_';
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
