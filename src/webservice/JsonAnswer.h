#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Error.h"

namespace vantrel {

/// A decoded JSON document, or a value inside one. A value: copies share what they hold. Any
/// thread.
class JsonAnswer {
 public:
  /// Deeper documents are refused.
  static constexpr int kMostDepth = 512;

  /// The document, an object or an array in UTF-8; an error of domain "JSON" for all else.
  static Expected<JsonAnswer> answerWithData(std::string_view data);

  bool isObject() const;
  /// Whether this is an object that holds the key; null is a value.
  bool contains(std::string_view key) const;
  /// Null, where `contains` is false.
  JsonAnswer operator[](std::string_view key) const;
  /// The first value of an array; nothing for an empty one and for all others.
  std::optional<JsonAnswer> first() const;

  std::optional<std::string> asString() const;
  /// Of a number.
  std::optional<double> asNumber() const;
  /// Of a number, its fraction cut off, or of a text that begins with one; 0 for all others.
  int intValue() const;

 private:
  explicit JsonAnswer(std::shared_ptr<const void> node) : node_(std::move(node)) {}

  /// Shares ownership of the whole document.
  std::shared_ptr<const void> node_;
};

}  // namespace vantrel
