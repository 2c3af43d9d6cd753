#include "platform/text/Utf8.h"

#include <unicode/utf8.h>

#include <cstdint>

namespace vantrel {

bool isUtf8(std::string_view text) {
  const auto size = static_cast<std::int32_t>(text.size());
  for (std::int32_t at = 0; at < size;) {
    UChar32 value = 0;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"  // in the macro
    U8_NEXT(text.data(), at, size, value);
#pragma GCC diagnostic pop
    if (value < 0) return false;
  }
  return true;
}

std::string_view beginning(std::string_view text, std::size_t count) {
  const auto size = static_cast<std::int32_t>(text.size());
  std::int32_t at = 0;
  for (; count > 0 && at < size; --count) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"  // in the macro
    [[maybe_unused]] UChar32 value = 0;
    U8_NEXT(text.data(), at, size, value);
#pragma GCC diagnostic pop
  }
  return text.substr(0, static_cast<std::size_t>(at));
}

}  // namespace vantrel
