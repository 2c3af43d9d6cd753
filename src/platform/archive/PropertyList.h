#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "base/Date.h"
#include "base/Error.h"

namespace vantrel {

using Data = std::vector<std::byte>;

/// The content of a file of at most PropertyList::kMaxBytes; otherwise an error of domain "POSIX"
/// whose code is an errno value.
Expected<Data> dataWithContentsOfURL(const std::filesystem::path& url);

/// A property list or a value inside one. A value that was read keeps its exact type when it is
/// written again, reals their 32 or 64 bits; reals of XML have 64.
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
  /// Refers to an object of a keyed archive.
  struct Uid {
    std::uint64_t number = 0;
  };
  using Array = std::vector<PropertyList>;
  /// In the order of the file. If a key occurs twice, the last one counts.
  using Dictionary = std::vector<std::pair<std::string, PropertyList>>;
  /// Unsigned integers are those beyond the signed ones; strings are UTF-8.
  using Value = std::variant<std::monostate, bool, std::int64_t, std::uint64_t, float, double,
                             std::string, Date, Data, Uid, Array, Dictionary>;

  /// Larger or deeper lists are rejected, as are those whose shared values would need more than
  /// kMaxMemory, since every place that refers to a shared value holds a copy.
  static constexpr std::size_t kMaxBytes = std::size_t{64} << 20;
  static constexpr std::size_t kMaxMemory = std::size_t{512} << 20;
  static constexpr std::size_t kMaxDepth = 256;
  /// The memory that a value needs besides its own bytes; an estimate on the high side.
  static constexpr std::size_t kNodeCost = 160;

  /// Nothing: what a missing key reads as, and the null of a list.
  PropertyList() = default;
  explicit PropertyList(Value value) : value_(std::move(value)) {}
  static PropertyList boolean(bool value) { return PropertyList(value); }
  static PropertyList integer(std::int64_t value) { return PropertyList(value); }
  /// Of 64 bits.
  static PropertyList real(double value) { return PropertyList(value); }
  /// Of 32 bits.
  static PropertyList realOfSinglePrecision(float value) { return PropertyList(value); }
  static PropertyList string(std::string value) { return PropertyList(std::move(value)); }
  static PropertyList date(Date value) { return PropertyList(value); }
  static PropertyList data(std::span<const std::byte> value) {
    return PropertyList(Data(value.begin(), value.end()));
  }
  static PropertyList uid(std::uint64_t value) { return PropertyList(Uid{value}); }
  static PropertyList array(Array items = {}) { return PropertyList(std::move(items)); }
  static PropertyList dictionary() { return PropertyList(Dictionary()); }

  /// Reads a list, binary or XML as its first bytes say. Bytes that are neither, truncated, cyclic
  /// or beyond the limits give an error of domain "PropertyList".
  static Expected<PropertyList> propertyListWithData(std::span<const std::byte> data);
  static Expected<PropertyList> propertyListWithContentsOfURL(const std::filesystem::path& url);
  /// The binary form.
  Data binaryData() const;

  Kind kind() const;
  explicit operator bool() const { return value_.index() != 0; }
  const Value& value() const { return value_; }

  /// The value, when it is of just that kind. Integers beyond 64 signed bits wrap around.
  std::optional<bool> asBoolean() const { return as<bool>(); }
  std::optional<std::int64_t> asInteger() const;
  std::optional<double> asReal() const;
  std::optional<std::string> asString() const { return as<std::string>(); }
  std::optional<Date> asDate() const { return as<Date>(); }
  std::optional<Data> asData() const { return as<Data>(); }
  std::optional<std::uint64_t> asUid() const;

  /// The number of values in an array or a dictionary; 0 for all others.
  std::size_t count() const { return items().size() + entries().size(); }
  /// An array's values in order; empty for all others.
  const Array& items() const&;
  Array items() && { return items(); }
  /// A dictionary's keys and values in order; empty for all others.
  const Dictionary& entries() const&;
  Dictionary entries() && { return entries(); }
  /// A dictionary's value; nothing when the key is missing or this is no dictionary.
  const PropertyList& operator[](std::string_view key) const&;
  PropertyList operator[](std::string_view key) && { return std::as_const(*this)[key]; }

  /// Changes a dictionary, leaving its other keys as they are; all other kinds stay unchanged.
  /// Setting nothing removes the key.
  void set(std::string_view key, PropertyList value);
  /// Adds to the end of an array; all other kinds, and nothing, change nothing.
  void append(PropertyList value);

 private:
  template <typename T>
  std::optional<T> as() const {
    const T* value = std::get_if<T>(&value_);
    return value ? std::optional<T>(*value) : std::nullopt;
  }

  Value value_;
};

}  // namespace vantrel
