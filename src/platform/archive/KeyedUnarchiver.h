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

/// Reads the objects of a keyed archive, each when it is asked for: an archive may be cyclic. A
/// value that is not of the kind asked for reads as if it were missing, and the first such is kept
/// as `error()`; look at it once, after reading. One thread at a time per archive.
class KeyedUnarchiver {
 public:
  class Node;

  /// Binary or XML. Damaged data, and lists that are no keyed archive, give an error of domain
  /// "KeyedUnarchiver" or "PropertyList".
  static Expected<KeyedUnarchiver> unarchiverWithData(std::span<const std::byte> data);

  /// The archived object. Nodes stay good when the unarchiver is gone.
  Node root() const;
  /// The first value that was not of the kind asked for.
  const std::optional<Error>& error() const;

 private:
  struct Archive;
  explicit KeyedUnarchiver(std::shared_ptr<Archive> archive) : archive_(std::move(archive)) {}
  std::shared_ptr<Archive> archive_;
};

/// An object of an archive; false when it is nil, which has no keys.
class KeyedUnarchiver::Node {
 public:
  Node() = default;
  explicit operator bool() const { return uid_ != 0; }
  /// Its number in the archive: equal numbers are the same object; 0 is nil.
  std::uint64_t uid() const { return uid_; }
  /// The name of its class without the module, which differs between the programs that write it;
  /// empty for a plain value.
  std::string className() const;

  bool containsValueForKey(std::string_view key) const;
  /// Numbers of all kinds, booleans included, are taken for one another: reals lose their fraction
  /// where an integer is asked for, and beyond single precision they are infinite. Integers out of
  /// range are errors. A missing key reads as 0, false or nil.
  double decodeDoubleForKey(std::string_view key) const;
  float decodeFloatForKey(std::string_view key) const;
  std::int32_t decodeInt32ForKey(std::string_view key) const;
  std::int64_t decodeInt64ForKey(std::string_view key) const;
  bool decodeBoolForKey(std::string_view key) const;
  Node decodeObjectForKey(std::string_view key) const;

  /// The object as what it archives; nothing for all other objects.
  std::optional<std::string> string() const;
  std::optional<Date> date() const;
  std::optional<Data> data() const;
  /// The 16 bytes of a UUID.
  std::optional<Data> uuid() const;
  /// The elements of an array or a set; empty for all other objects.
  std::vector<Node> array() const;
  /// Keys and values of a dictionary in the archive's order; empty for all other objects.
  std::vector<std::pair<Node, Node>> dictionary() const;
  /// The object as it stands in the archive: a boxed number's value, a dictionary of keys.
  const PropertyList& value() const;

 private:
  friend class KeyedUnarchiver;
  Node(std::shared_ptr<Archive> archive, std::uint64_t uid)
      : archive_(std::move(archive)), uid_(uid) {}
  Node nodeForReference(const PropertyList& reference, std::string_view key) const;
  std::vector<Node> nodesForKey(std::string_view key) const;
  std::optional<double> numberForKey(std::string_view key) const;
  void fail(std::string_view key, std::string_view why) const;

  std::shared_ptr<Archive> archive_;
  std::uint64_t uid_ = 0;
};

}  // namespace vantrel
