#include "platform/archive/KeyedUnarchiver.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vantrel {

namespace {

constexpr std::string_view kObjects = "NS.objects";

Error unreadable(const std::string& why) {
  return {"KeyedUnarchiver", 1, "The archive cannot be read: " + why, {}};
}

/// XML has no form for references; libplist reads them as dictionaries.
std::optional<std::uint64_t> uidOf(const PropertyList& reference) {
  if (reference.kind() != PropertyList::Kind::kDictionary) return reference.asUid();
  const auto uid = reference["CF$UID"].asInteger();
  if (reference.count() != 1 || !uid || *uid < 0) return std::nullopt;
  return static_cast<std::uint64_t>(*uid);
}

}  // namespace

struct KeyedUnarchiver::Archive {
  explicit Archive(PropertyList content) : list(std::move(content)) {}

  PropertyList list;
  const PropertyList::Array& objects = list["$objects"].items();
  std::uint64_t root = 0;
  std::optional<Error> error;
};

Expected<KeyedUnarchiver> KeyedUnarchiver::unarchiverWithData(std::span<const std::byte> data) {
  auto list = PropertyList::propertyListWithData(data);
  if (!list) return tl::unexpected(list.error());
  auto archive = std::make_shared<Archive>(std::move(*list));
  const auto root = uidOf(archive->list["$top"]["root"]);
  if (!root) return tl::unexpected(unreadable("it has no root object."));
  if (*root >= archive->objects.size()) {
    return tl::unexpected(unreadable("its root object is missing."));
  }
  archive->root = *root;
  return KeyedUnarchiver(std::move(archive));
}

KeyedUnarchiver::Node KeyedUnarchiver::root() const {
  return Node(archive_, archive_->root);
}

const std::optional<Error>& KeyedUnarchiver::error() const {
  return archive_->error;
}

void KeyedUnarchiver::Node::fail(std::string_view key, std::string_view why) const {
  if (archive_->error) return;
  archive_->error = unreadable("\"" + std::string(key) + "\" of object " + std::to_string(uid_) +
                               " " + std::string(why) + ".");
}

const PropertyList& KeyedUnarchiver::Node::value() const {
  static const PropertyList nothing;
  return uid_ == 0 ? nothing : archive_->objects[uid_];
}

KeyedUnarchiver::Node KeyedUnarchiver::Node::nodeForReference(const PropertyList& reference,
                                                              std::string_view key) const {
  const auto uid = uidOf(reference);
  if (uid && *uid < archive_->objects.size()) return Node(archive_, *uid);
  fail(key, "refers to a missing object");
  return {};
}

std::vector<KeyedUnarchiver::Node> KeyedUnarchiver::Node::nodesForKey(std::string_view key) const {
  const auto& references = value()[key];
  std::vector<Node> nodes;
  nodes.reserve(references.count());
  for (const auto& reference : references.items()) {
    nodes.push_back(nodeForReference(reference, key));
  }
  return nodes;
}

std::string KeyedUnarchiver::Node::className() const {
  if (!containsValueForKey("$class")) return {};
  const auto name = decodeObjectForKey("$class").value()["$classname"].asString().value_or("");
  return name.substr(name.rfind('.') + 1);
}

bool KeyedUnarchiver::Node::containsValueForKey(std::string_view key) const {
  return static_cast<bool>(value()[key]);
}

std::optional<double> KeyedUnarchiver::Node::numberForKey(std::string_view key) const {
  const auto& found = value()[key];
  if (const auto real = found.asReal()) return real;
  if (const auto flag = found.asBoolean()) return *flag ? 1 : 0;
  if (const auto integer = found.asInteger()) return static_cast<double>(*integer);
  if (found) fail(key, "is not a number");
  return std::nullopt;
}

double KeyedUnarchiver::Node::decodeDoubleForKey(std::string_view key) const {
  return numberForKey(key).value_or(0);
}

float KeyedUnarchiver::Node::decodeFloatForKey(std::string_view key) const {
  const double number = decodeDoubleForKey(key);
  if (std::abs(number) > std::numeric_limits<float>::max()) {
    return std::copysign(std::numeric_limits<float>::infinity(), number < 0 ? -1.0F : 1.0F);
  }
  return static_cast<float>(number);
}

template <typename Integer>
Integer KeyedUnarchiver::Node::integerForKey(std::string_view key,
                                             std::string_view typeError) const {
  using Limits = std::numeric_limits<Integer>;
  const auto& found = value()[key];
  std::optional<std::int64_t> number = found.asInteger();
  if (const auto flag = found.asBoolean()) number = *flag ? 1 : 0;
  if (const auto real = found.asReal()) {
    // As a double, the upper limit of 64 bits is 2^63, which is out of range; so is NaN.
    const double whole = std::trunc(*real);
    if (whole >= static_cast<double>(Limits::min()) &&
        whole < static_cast<double>(Limits::max()) + 1.0) {
      number = static_cast<std::int64_t>(whole);
    }
  }
  if (number && std::in_range<Integer>(*number)) return static_cast<Integer>(*number);
  if (found) fail(key, typeError);
  return 0;
}

std::int32_t KeyedUnarchiver::Node::decodeInt32ForKey(std::string_view key) const {
  return integerForKey<std::int32_t>(key, "is not a 32-bit integer");
}

std::int64_t KeyedUnarchiver::Node::decodeInt64ForKey(std::string_view key) const {
  return integerForKey<std::int64_t>(key, "is not a 64-bit integer");
}

bool KeyedUnarchiver::Node::decodeBoolForKey(std::string_view key) const {
  return numberForKey(key).value_or(0) != 0;
}

KeyedUnarchiver::Node KeyedUnarchiver::Node::decodeObjectForKey(std::string_view key) const {
  const auto& reference = value()[key];
  return reference ? nodeForReference(reference, key) : Node();
}

std::optional<std::string> KeyedUnarchiver::Node::string() const {
  if (auto text = value().asString()) return text;
  return value()["NS.string"].asString();
}

std::optional<Date> KeyedUnarchiver::Node::date() const {
  if (auto date = value().asDate()) return date;
  if (!containsValueForKey("NS.time")) return std::nullopt;
  const auto seconds = numberForKey("NS.time");
  return seconds ? std::optional(Date(*seconds)) : std::nullopt;
}

std::optional<Data> KeyedUnarchiver::Node::data() const {
  if (auto data = value().asData()) return data;
  return value()["NS.data"].asData();
}

std::optional<Data> KeyedUnarchiver::Node::uuid() const {
  auto bytes = value()["NS.uuidbytes"].asData();
  if (bytes && bytes->size() == 16) return bytes;
  return std::nullopt;
}

std::vector<KeyedUnarchiver::Node> KeyedUnarchiver::Node::array() const {
  if (containsValueForKey("NS.keys")) return {};
  return nodesForKey(kObjects);
}

std::vector<std::pair<KeyedUnarchiver::Node, KeyedUnarchiver::Node>>
KeyedUnarchiver::Node::dictionary() const {
  std::vector<std::pair<Node, Node>> pairs;
  if (!containsValueForKey("NS.keys")) return pairs;
  const auto keys = nodesForKey("NS.keys");
  const auto values = nodesForKey(kObjects);
  if (keys.size() != values.size()) {
    fail("NS.keys", "does not match its values");
    return pairs;
  }
  pairs.reserve(keys.size());
  for (std::size_t i = 0; i < keys.size(); ++i) pairs.emplace_back(keys[i], values[i]);
  return pairs;
}

}  // namespace vantrel
