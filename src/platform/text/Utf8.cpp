#include "platform/text/Utf8.h"

#include <unicode/utf8.h>

namespace vantrel {

bool CodePoints::next() {
  if (end_ == text_.size()) return false;
  start_ = end_;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"  // in the macro
  U8_NEXT(text_.data(), end_, text_.size(), value_);
#pragma GCC diagnostic pop
  return true;
}

bool isUtf8(std::string_view text) {
  CodePoints at(text);
  while (at.next()) {
    if (at.value() < 0) return false;
  }
  return true;
}

std::string_view beginning(std::string_view text, std::size_t count) {
  CodePoints at(text);
  while (count > 0 && at.next()) --count;
  return at.read();
}

}  // namespace vantrel
