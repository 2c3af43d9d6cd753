#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vantrel {

/// Iterates over the code points of UTF-8 text:
///
///     for (CodePoints at(text); at.next();) use(at.value(), at.bytes());
class CodePoints {
 public:
  /// `text` must outlive the object.
  explicit CodePoints(std::string_view text) : text_(text) {}

  /// Moves to the next code point, at first to the first. False at the end of the text.
  bool next();
  /// Negative if the bytes are ill-formed.
  std::int32_t value() const { return value_; }
  std::string_view bytes() const { return text_.substr(start_, end_ - start_); }
  /// The text up to the end of the code point.
  std::string_view read() const { return text_.substr(0, end_); }

 private:
  std::string_view text_;
  std::size_t start_ = 0;
  std::size_t end_ = 0;
  std::int32_t value_ = 0;
};

/// Whether `text` is well-formed UTF-8: overlong sequences and surrogates are not.
bool isUtf8(std::string_view text);

/// The first `count` code points of `text`, or all if it is shorter.
std::string_view beginning(std::string_view text, std::size_t count);

}  // namespace vantrel
