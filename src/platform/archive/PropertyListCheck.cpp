#include "platform/archive/PropertyListCheck.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "platform/archive/BinaryTrailer.h"
#include "platform/archive/PropertyList.h"
#include "platform/text/Utf8.h"

namespace vantrel {

namespace {

/// What a value takes in memory besides its own bytes; an estimate on the high side.
constexpr std::size_t kNodeCost = 160;

/// Walks the object table of a binary property list without recursion.
class BinaryCheck {
 public:
  explicit BinaryCheck(std::span<const std::byte> data) : data_(data) {}
  bool isBounded();

 private:
  struct Object {
    std::size_t type = 0;
    std::size_t at = 0;       ///< Where its bytes or references stand.
    std::size_t payload = 0;  ///< Bytes of a scalar.
    std::size_t references = 0;
  };
  struct Visit {
    std::size_t index = 0;
    Object object;
    std::size_t next = 0;  ///< The reference to look at next.
    std::size_t cost = 0;
    std::size_t depth = 1;
  };
  /// The upper half of an object's first byte.
  static constexpr std::size_t kText = 0x5;
  static constexpr std::size_t kWideText = 0x6;
  static constexpr std::size_t kDictionary = 0xd;

  enum class State : std::uint8_t { kUnseen, kOpen, kDone };
  struct Known {
    State state = State::kUnseen;
    std::uint16_t depth = 0;
    std::size_t cost = 0;
  };

  std::optional<Object> objectAt(std::size_t index) const;
  bool isText(const Object& object) const;
  bool canBeKey(std::size_t index) const;
  bool open(std::size_t index);
  void close();
  std::uint64_t number(std::size_t at, std::size_t size) const {
    return bigEndianNumber(data_, at, size);
  }

  std::span<const std::byte> data_;
  BinaryTrailer trailer_;
  std::vector<Known> known_;
  std::vector<Visit> path_;
};

std::optional<BinaryCheck::Object> BinaryCheck::objectAt(std::size_t index) const {
  const std::size_t end = trailer_.table;
  std::size_t at = trailer_.offsetOfObject(data_, index);
  if (at < BinaryTrailer::kHeaderSize || at >= end) return std::nullopt;
  const auto type = number(at, 1) >> 4;
  std::size_t count = number(at, 1) & 0xf;
  ++at;
  if (type >= 0x4 && type != 0x8 && count == 0xf) {
    if (at >= end || number(at, 1) >> 4 != 0x1) return std::nullopt;
    const std::size_t size = std::size_t{1} << (number(at, 1) & 0xf);
    ++at;
    if (size > 8 || size > end - at) return std::nullopt;
    count = number(at, size);
    at += size;
  }
  const std::size_t room = end - at;
  std::size_t unit = 1;
  if (type == kWideText) unit = 2;
  if (type == 0xa || type == 0xc) unit = trailer_.referenceSize;
  if (type == kDictionary) unit = 2 * trailer_.referenceSize;
  if (type < 0x4 || type == 0x8) return Object{type};  // at most 16 bytes, which the library checks
  if (count > room / unit) return std::nullopt;
  if (type < 0xa) return Object{type, at, count * unit, 0};
  return Object{type, at, 0, count * unit / trailer_.referenceSize};
}

/// Texts of single bytes are ASCII; the library would take anything for UTF-8, and could not read
/// again what it writes then. Nor could it with a zero, or half a pair, in a text of UTF-16.
bool BinaryCheck::isText(const Object& object) const {
  if (object.type == kWideText) {
    bool isInPair = false;
    for (std::size_t i = 0; i < object.payload; i += 2) {
      const auto unit = number(object.at + i, 2);
      const bool isSecond = unit >= 0xdc00 && unit < 0xe000;
      if (unit == 0 || isSecond != isInPair) return false;
      isInPair = unit >= 0xd800 && unit < 0xdc00;
    }
    return !isInPair;
  }
  std::byte seen{0};
  for (const std::byte one : data_.subspan(object.at, object.payload)) seen |= one;
  return object.type == kText && seen < std::byte{0x80};
}

/// The library ends the process over a key with a zero character inside.
bool BinaryCheck::canBeKey(std::size_t index) const {
  const auto key = index < trailer_.objectCount ? objectAt(index) : std::nullopt;
  if (!key || !isText(*key)) return false;
  const auto bytes = data_.subspan(key->at, key->payload);
  return key->type == kWideText ||
         std::find(bytes.begin(), bytes.end(), std::byte{0}) == bytes.end();
}

bool BinaryCheck::open(std::size_t index) {
  const auto object = objectAt(index);
  if (!object || path_.size() >= PropertyList::kMaxDepth) return false;
  const bool isMeantAsText = object->type == kText || object->type == kWideText;
  if (isMeantAsText && !isText(*object)) return false;
  known_[index].state = State::kOpen;
  path_.push_back({index, *object, 0, kNodeCost + object->payload, 1});
  return true;
}

void BinaryCheck::close() {
  const Visit visit = path_.back();
  path_.pop_back();
  known_[visit.index] = {State::kDone, static_cast<std::uint16_t>(visit.depth), visit.cost};
}

bool BinaryCheck::isBounded() {
  const auto trailer = BinaryTrailer::ofPropertyList(data_);
  if (!trailer) return false;
  trailer_ = *trailer;
  known_.resize(trailer_.objectCount);
  if (!open(trailer_.root)) return false;
  while (!path_.empty()) {
    Visit& visit = path_.back();
    if (visit.next == visit.object.references) {
      close();
      continue;
    }
    const std::size_t child =
        number(visit.object.at + visit.next * trailer_.referenceSize, trailer_.referenceSize);
    const bool isKey = visit.object.type == kDictionary && visit.next < visit.object.references / 2;
    if (isKey && !canBeKey(child)) return false;
    if (child >= trailer_.objectCount || known_[child].state == State::kOpen) return false;
    if (known_[child].state == State::kUnseen) {
      if (!open(child)) return false;
      continue;
    }
    ++visit.next;
    visit.cost += known_[child].cost;
    visit.depth = std::max<std::size_t>(visit.depth, known_[child].depth + std::size_t{1});
    if (visit.cost > PropertyList::kMaxMemory) return false;
    if (path_.size() - 1 + visit.depth > PropertyList::kMaxDepth) return false;
  }
  return true;
}

bool startsWith(std::string_view text, std::size_t at, std::string_view prefix) {
  return text.compare(at, prefix.size(), prefix) == 0;
}

}  // namespace

bool binaryPropertyListIsBounded(std::span<const std::byte> data) {
  return BinaryCheck(data).isBounded();
}

bool xmlPropertyListIsBounded(std::span<const std::byte> data) {
  const std::string_view text(reinterpret_cast<const char*>(data.data()), data.size());
  constexpr auto kEnd = std::string_view::npos;
  if (!isUtf8(text) || text.find('\0') != kEnd) return false;
  std::size_t elements = 0;
  int depth = 0;
  for (auto at = text.find('<'); at != kEnd; at = text.find('<', at)) {
    std::string_view opener = "<";
    std::string_view terminator = ">";
    if (startsWith(text, at, "<!--")) std::tie(opener, terminator) = std::pair("<!--", "-->");
    if (startsWith(text, at, "<![CDATA["))
      std::tie(opener, terminator) = std::pair("<![CDATA[", "]]>");
    if (startsWith(text, at, "<?")) terminator = "?>";
    const auto end = text.find(terminator, at + opener.size());
    if (end == kEnd) return false;
    const auto tag = text.substr(at + 1, end - at - 1);
    at = end + terminator.size();
    if (opener.size() > 1) continue;
    // A property list needs neither a document type of its own nor attributes beyond the version;
    // both could hide tags from this count, and so may stand outside of all values only.
    const bool mayQuote = tag.starts_with('!') || tag.starts_with('?') || tag.starts_with("plist");
    if (mayQuote ? depth > 0 : tag.find_first_of("\"'") != kEnd) return false;
    if (tag.find('<') != kEnd || (tag.starts_with('!') && tag.find('[') != kEnd)) return false;
    if (++elements > PropertyList::kMaxMemory / kNodeCost) return false;
    if ((tag.starts_with("/array") || tag.starts_with("/dict")) && --depth < 0) return false;
    const bool opens = tag.starts_with("array") || tag.starts_with("dict");
    if (opens && !tag.ends_with('/') && ++depth > PropertyList::kMaxDepth) return false;
  }
  return true;
}

}  // namespace vantrel
