#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Error.h"

namespace vantrel {

/// A decoded JSON document or a value in one. Copies share the document. Thread-safe.
class JsonAnswer {
 public:
  static constexpr int kMaxDepth = 512;

  /// Decodes an object or array in UTF-8. Errors (domain "JSON"): invalid JSON, another root,
  /// nesting deeper than kMaxDepth.
  static Expected<JsonAnswer> answerWithData(std::string_view data);

  bool isObject() const;
  /// Whether this is an object with the key, even if its value is null.
  bool contains(std::string_view key) const;
  /// A null value if contains() is false.
  JsonAnswer operator[](std::string_view key) const;
  /// The first element; `nullopt` if this is not an array or it is empty.
  std::optional<JsonAnswer> first() const;

  std::optional<std::string> asString() const;
  std::optional<double> asNumber() const;
  /// A number truncated toward zero, or the integer at the start of a string, clamped to the range
  /// of int; otherwise 0.
  int intValue() const;

 private:
  explicit JsonAnswer(std::shared_ptr<const void> node) : node_(std::move(node)) {}

  /// Shares ownership of the whole document.
  std::shared_ptr<const void> node_;
};

}  // namespace vantrel
