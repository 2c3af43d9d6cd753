#pragma once

namespace vantrel {

/// The value of a hexadecimal digit; 16 for what is none.
constexpr int hexDigitValue(char32_t digit) {
  if (digit >= U'0' && digit <= U'9') return static_cast<int>(digit - U'0');
  if (digit >= U'A' && digit <= U'F') return static_cast<int>(digit - U'A') + 10;
  if (digit >= U'a' && digit <= U'f') return static_cast<int>(digit - U'a') + 10;
  return 16;
}

}  // namespace vantrel
