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

}  // namespace vantrel
