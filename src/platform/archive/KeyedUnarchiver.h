#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Date.h"
#include "base/Error.h"
#include "platform/archive/PropertyList.h"

namespace vantrel {

/// Reads a keyed archive, whose form `KeyedArchiver` describes, object by object, since archives
/// may be cyclic. A value of the wrong type reads as if it were missing, and the first one sets
/// `error()`, which callers check once after reading:
///
///     const auto pin = archive.root();
///     const double latitude = pin.decodeDoubleForKey("latitude");
///     const auto name = pin.decodeObjectForKey("name").string();
///     if (archive.error()) return tl::unexpected(*archive.error());
///
/// Not thread-safe; nodes share the state of their archive.
class KeyedUnarchiver {
 public:
  class Node;

  /// Parses a binary or XML archive. Errors: domain "PropertyList", or "KeyedUnarchiver" if the
  /// list is not a keyed archive.
  static Expected<KeyedUnarchiver> unarchiverWithData(std::span<const std::byte> data);

  /// Nodes remain valid after the destruction of the unarchiver.
  Node root() const;
  /// The first wrong type or missing object found by any node.
  const std::optional<Error>& error() const;

 private:
  struct Archive;
  explicit KeyedUnarchiver(std::shared_ptr<Archive> archive) : archive_(std::move(archive)) {}
  std::shared_ptr<Archive> archive_;
};

/// An object of an archive. False if it is nil, which has no keys.
class KeyedUnarchiver::Node {
 public:
  Node() = default;
  explicit operator bool() const { return uid_ != 0; }
  /// The class name without its module: "Cover" for "Package.Cover". Empty for strings and scalars.
  std::string className() const;

  bool containsValueForKey(std::string_view key) const;
  /// 0, false or nil if the key is missing. Numbers and booleans are converted: integers truncate
  /// reals, and a float is infinite for larger reals. Errors: the value is not a number, or out of
  /// the range of an integer.
  double decodeDoubleForKey(std::string_view key) const;
  float decodeFloatForKey(std::string_view key) const;
  std::int32_t decodeInt32ForKey(std::string_view key) const;
  std::int64_t decodeInt64ForKey(std::string_view key) const;
  bool decodeBoolForKey(std::string_view key) const;
  Node decodeObjectForKey(std::string_view key) const;

  /// The value of a string, date or data object, plain or archived; `nullopt` for other objects.
  std::optional<std::string> string() const;
  std::optional<Date> date() const;
  std::optional<Data> data() const;
  /// The 16 bytes of a UUID.
  std::optional<Data> uuid() const;
  /// The elements of an array or set; empty for other objects.
  std::vector<Node> array() const;
  /// The entries of a dictionary in the order of the archive; empty for other objects.
  std::vector<std::pair<Node, Node>> dictionary() const;
  /// The element of `$objects`: the value of a boxed number, or the dictionary of an object's keys.
  const PropertyList& value() const;

 private:
  friend class KeyedUnarchiver;
  Node(std::shared_ptr<Archive> archive, std::uint64_t uid)
      : archive_(std::move(archive)), uid_(uid) {}
  Node nodeForReference(const PropertyList& reference, std::string_view key) const;
  std::vector<Node> nodesForKey(std::string_view key) const;
  std::optional<double> numberForKey(std::string_view key) const;
  template <typename Integer>
  Integer integerForKey(std::string_view key, std::string_view typeError) const;
  void fail(std::string_view key, std::string_view why) const;

  std::shared_ptr<Archive> archive_;
  std::uint64_t uid_ = 0;
};

}  // namespace vantrel
