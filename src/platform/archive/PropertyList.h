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

/// Returns the content of a file of at most PropertyList::kMaxBytes. Errors: domain "POSIX", with
/// an errno value as the code.
Expected<Data> dataWithContentsOfURL(const std::filesystem::path& url);

/// A property list, or a value in one. Values keep their type when they are read and written again,
/// and reals their size, 32 or 64 bits (64 in XML). A value; distinct objects are independent.
class PropertyList {
 public:
  enum class Kind {
    kNull,
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
  /// A reference to an object of a keyed archive.
  struct Uid {
    std::uint64_t number = 0;
  };
  using Array = std::vector<PropertyList>;
  /// In the order of the file. The last of equal keys counts.
  using Dictionary = std::vector<std::pair<std::string, PropertyList>>;
  /// Integers of 2^63 and above are unsigned; strings are UTF-8.
  using Value = std::variant<std::monostate, bool, std::int64_t, std::uint64_t, float, double,
                             std::string, Date, Data, Uid, Array, Dictionary>;

  /// Limits of lists that can be read. As every reference to a shared object becomes a copy, a
  /// small list may need more than kMaxMemory.
  static constexpr std::size_t kMaxBytes = std::size_t{64} << 20;
  static constexpr std::size_t kMaxMemory = std::size_t{512} << 20;
  static constexpr std::size_t kMaxDepth = 256;
  /// An upper estimate of a value's memory besides its bytes.
  static constexpr std::size_t kNodeCost = 160;

  /// Null: the value of a missing key.
  PropertyList() = default;
  explicit PropertyList(Value value) : value_(std::move(value)) {}
  static PropertyList boolean(bool value) { return PropertyList(value); }
  static PropertyList integer(std::int64_t value) { return PropertyList(value); }
  static PropertyList real(double value) { return PropertyList(value); }
  static PropertyList realOfSinglePrecision(float value) { return PropertyList(value); }
  static PropertyList string(std::string value) { return PropertyList(std::move(value)); }
  static PropertyList date(Date value) { return PropertyList(value); }
  static PropertyList data(std::span<const std::byte> value) {
    return PropertyList(Data(value.begin(), value.end()));
  }
  static PropertyList uid(std::uint64_t value) { return PropertyList(Uid{value}); }
  static PropertyList array(Array items = {}) { return PropertyList(std::move(items)); }
  static PropertyList dictionary() { return PropertyList(Dictionary()); }

  /// Parses a binary or XML list. Errors: domain "PropertyList" if it is damaged, cyclic or exceeds
  /// the limits; "POSIX" if the file cannot be read.
  static Expected<PropertyList> propertyListWithData(std::span<const std::byte> data);
  static Expected<PropertyList> propertyListWithContentsOfURL(const std::filesystem::path& url);
  /// The binary form.
  Data binaryData() const;

  Kind kind() const;
  explicit operator bool() const { return value_.index() != 0; }
  const Value& value() const { return value_; }

  /// `nullopt` unless the value is of exactly this kind. Integers of 2^63 and above become
  /// negative.
  std::optional<bool> asBoolean() const { return as<bool>(); }
  std::optional<std::int64_t> asInteger() const;
  std::optional<double> asReal() const;
  std::optional<std::string> asString() const { return as<std::string>(); }
  std::optional<Date> asDate() const { return as<Date>(); }
  std::optional<Data> asData() const { return as<Data>(); }
  std::optional<std::uint64_t> asUid() const;

  /// The number of values in an array or dictionary; 0 for other kinds.
  std::size_t count() const { return items().size() + entries().size(); }
  /// Empty unless this is an array.
  const Array& items() const&;
  Array items() && { return items(); }
  /// Empty unless this is a dictionary.
  const Dictionary& entries() const&;
  Dictionary entries() && { return entries(); }
  /// Null if the key is missing or this is not a dictionary.
  const PropertyList& operator[](std::string_view key) const&;
  PropertyList operator[](std::string_view key) && { return std::as_const(*this)[key]; }

  /// Sets a value in a dictionary, or removes the key if `value` is null. Ignored for other kinds.
  void set(std::string_view key, PropertyList value);
  /// Appends to an array. Ignored for other kinds and for null.
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
