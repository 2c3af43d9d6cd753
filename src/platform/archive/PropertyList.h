#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Date.h"
#include "base/Error.h"

namespace vantrel {

using Data = std::vector<std::byte>;

/// The content of a file of at most PropertyList::kMaxBytes; otherwise an error of domain "POSIX"
/// whose code is an errno value.
Expected<Data> dataWithContentsOfURL(const std::filesystem::path& url);

/// A property list or a value inside one. A value: copies share what they hold until one of them is
/// changed, and a value taken out of a list stays good when the list is gone. A value that was read
/// keeps its exact type when it is written again, reals their 32 or 64 bits; those of XML, which
/// does not tell, are written in 32 bits where these hold them. One thread at a time per list.
class PropertyList {
 public:
  enum class Kind {
    kNothing,
    kBoolean,
    kInteger,
    kReal,
    kString,
    kDate,
    kData,
    kUid,
    kArray,
    kDictionary
  };
  /// Larger or deeper lists are refused, as are those whose shared values would fill more than
  /// kMaxMemory when each is read at every place that names it.
  static constexpr std::size_t kMaxBytes = std::size_t{64} << 20;
  static constexpr std::size_t kMaxMemory = std::size_t{512} << 20;
  static constexpr int kMaxDepth = 256;

  /// Nothing: what a missing key reads as.
  PropertyList() = default;
  static PropertyList boolean(bool value);
  static PropertyList integer(std::int64_t value);
  /// Of 64 bits.
  static PropertyList real(double value);
  /// Of 32 bits; 64 for what is not a number.
  static PropertyList realOfSinglePrecision(float value);
  /// UTF-8; ends at its first NUL.
  static PropertyList string(const std::string& value);
  static PropertyList date(Date value);
  static PropertyList data(std::span<const std::byte> value);
  /// Refers to an object of a keyed archive.
  static PropertyList uid(std::uint64_t value);
  static PropertyList array(std::span<const PropertyList> items = {});
  static PropertyList dictionary();

  /// Reads a list, binary or XML as its first bytes say. Bytes that are neither, truncated, cyclic
  /// or beyond the limits give an error of domain "PropertyList".
  static Expected<PropertyList> propertyListWithData(std::span<const std::byte> data);
  static Expected<PropertyList> propertyListWithContentsOfURL(const std::filesystem::path& url);
  /// The binary form; empty for nothing.
  Data binaryData() const;

  Kind kind() const;
  explicit operator bool() const { return node_ != nullptr; }

  /// The value, when it is of just that kind.
  std::optional<bool> asBoolean() const;
  std::optional<std::int64_t> asInteger() const;
  std::optional<double> asReal() const;
  std::optional<std::string> asString() const;
  std::optional<Date> asDate() const;
  std::optional<Data> asData() const;
  std::optional<std::uint64_t> asUid() const;

  /// How many values an array or a dictionary holds; 0 for all others.
  std::size_t count() const;
  /// An array's values in order; empty for all others.
  std::vector<PropertyList> items() const;
  /// A dictionary's keys and values in the order they are stored in; empty for all others.
  std::vector<std::pair<std::string, PropertyList>> entries() const;
  /// A dictionary's value; nothing when the key is missing or this is no dictionary.
  PropertyList operator[](std::string_view key) const;

  /// Changes a dictionary, leaving its other keys as they are; all other kinds stay unchanged.
  /// Setting nothing removes the key.
  void set(std::string_view key, const PropertyList& value);
  /// Adds to the end of an array; all other kinds, and nothing, change nothing.
  void append(const PropertyList& value);

 private:
  explicit PropertyList(std::shared_ptr<void> node) : node_(std::move(node)) {}
  static PropertyList owning(void* node);
  PropertyList child(void* node) const;
  void detach();

  /// A node of the library; shares ownership of the whole list it belongs to.
  std::shared_ptr<void> node_;
};

}  // namespace vantrel
