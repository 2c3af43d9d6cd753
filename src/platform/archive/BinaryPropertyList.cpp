#include "platform/archive/BinaryPropertyList.h"

#include <unicode/unistr.h>
#include <unicode/utf.h>

#include <algorithm>
#include <bit>
#include <limits>
#include <unordered_map>

namespace vantrel {

namespace {

constexpr std::string_view kMark = kBinaryPropertyListMark;
constexpr std::size_t kTrailerSize = 32;

/// The upper four bits of an object's first byte. The lower four bits are its value, the logarithm
/// of its size, or its count.
enum Type : std::uint8_t {
  kConstant = 0x0,
  kInteger = 0x1,
  kReal = 0x2,
  kDate = 0x3,
  kData = 0x4,
  kAscii = 0x5,
  kUtf16 = 0x6,
  kUid = 0x8,
  kArray = 0xa,
  kSet = 0xc,
  kDictionary = 0xd
};
constexpr std::size_t kFalse = 0x8;
constexpr std::size_t kTrue = 0x9;
/// As a count: the count follows as an integer.
constexpr std::size_t kLongCount = 0xf;

bool isAscii(std::string_view text) {
  unsigned char seen = 0;
  for (const char one : text) seen |= static_cast<unsigned char>(one);
  return seen < 0x80;
}

class BinaryReader {
 public:
  explicit BinaryReader(std::span<const std::byte> data) : data_(data) {}
  std::optional<PropertyList> list();

 private:
  struct Object {
    std::size_t type = 0;
    std::size_t at = 0;     ///< The offset of its bytes or references.
    std::size_t count = 0;  ///< Of bytes, characters, elements or entries.
    std::size_t cost = 0;   ///< Memory of the value with all values inside; 0 until measured.
    std::size_t height = 1;
  };

  std::uint64_t number(std::size_t at, std::size_t size) const {
    std::uint64_t value = 0;
    for (const auto byte : data_.subspan(at, size)) {
      value = value << 8 | std::to_integer<std::uint64_t>(byte);
    }
    return value;
  }
  std::size_t reference(const Object& object, std::size_t i) const {
    return number(object.at + i * referenceSize_, referenceSize_);
  }
  bool readTrailer();
  std::optional<Object> objectAt(std::size_t at) const;
  bool measure(std::size_t index, std::size_t depth);
  PropertyList value(const Object& object);
  PropertyList integer(const Object& object);
  std::string text(const Object& object);

  std::span<const std::byte> data_;
  std::size_t offsetSize_ = 0;
  std::size_t referenceSize_ = 0;
  std::size_t root_ = 0;
  std::size_t table_ = 0;  ///< The end of the objects and the begin of the table of their offsets.
  std::vector<Object> objects_;
  bool isDamaged_ = false;
};

bool BinaryReader::readTrailer() {
  if (data_.size() < kMark.size() + kTrailerSize) return false;
  const std::size_t at = data_.size() - kTrailerSize;
  offsetSize_ = number(at + 6, 1);
  referenceSize_ = number(at + 7, 1);
  const std::size_t count = number(at + 8, 8);
  root_ = number(at + 16, 8);
  table_ = number(at + 24, 8);
  const auto isSize = [](std::size_t size) { return size >= 1 && size <= 8; };
  if (!isSize(offsetSize_) || !isSize(referenceSize_)) return false;
  if (table_ < kMark.size() || table_ > at || count > (at - table_) / offsetSize_) return false;
  if (count > PropertyList::kMaxMemory / PropertyList::kNodeCost) return false;
  objects_.resize(count);
  return true;
}

/// `nullopt` if the object is of an unknown type or does not fit before the table.
std::optional<BinaryReader::Object> BinaryReader::objectAt(std::size_t at) const {
  if (at < kMark.size() || at >= table_) return std::nullopt;
  const auto marker = number(at++, 1);
  Object object{.type = marker >> 4, .count = marker & 0xf};
  if (object.type == kSet) object.type = kArray;
  auto& count = object.count;
  if (object.type >= kData && object.type != kUid && count == kLongCount) {
    if (at >= table_ || number(at, 1) >> 4 != kInteger) return std::nullopt;
    const std::size_t size = std::size_t{1} << (number(at++, 1) & 0xf);
    if (size > 8 || size > table_ - at) return std::nullopt;
    count = number(at, size);
    at += size;
  }
  object.at = at;
  std::size_t unit = 1;
  bool isKnown = true;
  switch (object.type) {
    case kConstant:
      isKnown = count == 0 || count == kFalse || count == kTrue;
      unit = 0;
      break;
    case kInteger:
      isKnown = count <= 4;
      count = std::size_t{1} << count;
      break;
    case kReal:
    case kDate:
      isKnown = count == 3 || (count == 2 && object.type == kReal);
      count = std::size_t{1} << count;
      break;
    case kUid:
      isKnown = ++count <= 8;
      break;
    case kUtf16:
      unit = 2;
      break;
    case kArray:
      unit = referenceSize_;
      break;
    case kDictionary:
      unit = 2 * referenceSize_;
      break;
    default:
      isKnown = object.type == kData || object.type == kAscii;
  }
  const bool fits = unit == 0 || count <= (table_ - at) / unit;
  return isKnown && fits ? std::optional(object) : std::nullopt;
}

/// Finds an object and all objects below it before any value is created: a small list may contain
/// itself, or repeat values so often that they exhaust the memory. False if it exceeds the limits.
/// O(n) in the size of the list.
bool BinaryReader::measure(std::size_t index, std::size_t depth) {
  // A cycle ends here too.
  if (index >= objects_.size() || depth >= PropertyList::kMaxDepth) return false;
  if (objects_[index].cost == 0) {
    auto object = objectAt(number(table_ + index * offsetSize_, offsetSize_));
    if (!object) return false;
    const bool isContainer = object->type == kArray || object->type == kDictionary;
    const std::size_t references = object->count * (object->type == kDictionary ? 2 : 1);
    object->cost = PropertyList::kNodeCost + (isContainer ? 0 : 3 * object->count);
    for (std::size_t i = 0; isContainer && i < references; ++i) {
      const auto child = reference(*object, i);
      if (!measure(child, depth + 1)) return false;
      object->cost += objects_[child].cost;
      object->height = std::max(object->height, objects_[child].height + 1);
      if (object->cost > PropertyList::kMaxMemory) return false;
    }
    objects_[index] = *object;
  }
  return depth + objects_[index].height <= PropertyList::kMaxDepth;
}

PropertyList BinaryReader::integer(const Object& object) {
  if (object.count < 16) {
    return PropertyList::integer(static_cast<std::int64_t>(number(object.at, object.count)));
  }
  const auto high = number(object.at, 8);
  const auto low = number(object.at + 8, 8);
  const bool isLarge = low >> 63 != 0;
  if (isLarge && high == 0) return PropertyList(low);
  isDamaged_ |= high != (isLarge ? std::numeric_limits<std::uint64_t>::max() : 0);
  return PropertyList::integer(static_cast<std::int64_t>(low));
}

/// Marks the list as damaged if the object is not a string, has half a surrogate pair, or has a
/// byte beyond ASCII, whose encoding is unknown.
std::string BinaryReader::text(const Object& object) {
  std::string result;
  if (object.type == kAscii) {
    result.assign(reinterpret_cast<const char*>(data_.data()) + object.at, object.count);
    isDamaged_ |= !isAscii(result);
    return result;
  }
  isDamaged_ |= object.type != kUtf16;
  for (std::size_t i = 0; i < object.count && !isDamaged_;) {
    const auto next = [&] {
      return i < object.count ? static_cast<UChar32>(number(object.at + 2 * i++, 2)) : 0;
    };
    UChar32 point = next();
    if (U16_IS_SURROGATE(point)) {
      const UChar32 second = next();
      isDamaged_ |= !U16_IS_SURROGATE_LEAD(point) || !U16_IS_TRAIL(second);
      point = U16_GET_SUPPLEMENTARY(point, second);
    }
    char bytes[U8_MAX_LENGTH];
    std::size_t size = 0;
    if (!isDamaged_) U8_APPEND_UNSAFE(bytes, size, point);
    result.append(bytes, size);
  }
  return result;
}

PropertyList BinaryReader::value(const Object& object) {
  const auto bits = [&] { return number(object.at, object.count); };
  switch (object.type) {
    case kConstant:
      return object.count == 0 ? PropertyList() : PropertyList::boolean(object.count == kTrue);
    case kInteger:
      return integer(object);
    case kReal:
      if (object.count == 8) return PropertyList::real(std::bit_cast<double>(bits()));
      return PropertyList::realOfSinglePrecision(
          std::bit_cast<float>(static_cast<std::uint32_t>(bits())));
    case kDate:
      return PropertyList::date(Date(std::bit_cast<double>(bits())));
    case kData:
      return PropertyList::data(data_.subspan(object.at, object.count));
    case kUid:
      return PropertyList::uid(bits());
    case kArray: {
      PropertyList::Array items;
      items.reserve(object.count);
      for (std::size_t i = 0; i < object.count; ++i) {
        items.push_back(value(objects_[reference(object, i)]));
      }
      return PropertyList(std::move(items));
    }
    case kDictionary: {
      PropertyList::Dictionary entries;
      entries.reserve(object.count);
      for (std::size_t i = 0; i < object.count; ++i) {
        entries.emplace_back(text(objects_[reference(object, i)]),
                             value(objects_[reference(object, object.count + i)]));
      }
      return PropertyList(std::move(entries));
    }
    default:
      return PropertyList::string(text(object));
  }
}

std::optional<PropertyList> BinaryReader::list() {
  if (!readTrailer() || !measure(root_, 0)) return std::nullopt;
  auto result = value(objects_[root_]);
  return isDamaged_ ? std::nullopt : std::optional(std::move(result));
}

/// The number of bytes that hold `value`: 1, 2, 4 or 8.
std::size_t sizeOf(std::uint64_t value) {
  return value >> 32 ? 8 : value >> 16 ? 4 : value >> 8 ? 2 : 1;  // NOLINT: a table of sizes
}

std::string bigEndian(std::uint64_t value, std::size_t size) {
  std::string bytes(size, '\0');
  for (; size > 0; value >>= 8) bytes[--size] = static_cast<char>(value);
  return bytes;
}

std::string marker(Type type, std::size_t low) {
  return {static_cast<char>(static_cast<std::size_t>(type) << 4 | low)};
}

/// `size` is a power of 2.
std::string numberObject(Type type, std::uint64_t value, std::size_t size) {
  return marker(type, static_cast<std::size_t>(std::countr_zero(size))) + bigEndian(value, size);
}

std::string counted(Type type, std::size_t count, std::string_view content = {}) {
  auto object = marker(type, std::min(count, kLongCount));
  if (count >= kLongCount) object += numberObject(kInteger, count, sizeOf(count));
  return object.append(content);
}

std::string textObject(const std::string& text) {
  if (isAscii(text)) return counted(kAscii, text.size(), text);
  std::string units;
  const auto wide = icu::UnicodeString::fromUTF8(text);
  for (std::int32_t i = 0; i < wide.length(); ++i) units += bigEndian(wide.charAt(i), 2);
  return counted(kUtf16, units.size() / 2, units);
}

/// Returns the bytes of an object, without the references of a container.
struct Head {
  std::string operator()(std::monostate /*null*/) const { return marker(kConstant, 0); }
  std::string operator()(bool value) const { return marker(kConstant, value ? kTrue : kFalse); }
  std::string operator()(std::int64_t value) const {
    const auto bits = static_cast<std::uint64_t>(value);
    return numberObject(kInteger, bits, sizeOf(bits));
  }
  std::string operator()(std::uint64_t value) const {
    return marker(kInteger, 4) + bigEndian(0, 8) + bigEndian(value, 8);
  }
  std::string operator()(float value) const {
    return numberObject(kReal, std::bit_cast<std::uint32_t>(value), 4);
  }
  std::string operator()(double value) const {
    return numberObject(kReal, std::bit_cast<std::uint64_t>(value), 8);
  }
  std::string operator()(Date value) const {
    return numberObject(kDate, std::bit_cast<std::uint64_t>(value), 8);
  }
  std::string operator()(const std::string& value) const { return textObject(value); }
  std::string operator()(const Data& value) const {
    return counted(kData, value.size(),
                   {reinterpret_cast<const char*>(value.data()), value.size()});
  }
  std::string operator()(PropertyList::Uid value) const {
    const auto size = sizeOf(value.number);
    return marker(kUid, size - 1) + bigEndian(value.number, size);
  }
  std::string operator()(const PropertyList::Array& value) const {
    return counted(kArray, value.size());
  }
  std::string operator()(const PropertyList::Dictionary& value) const {
    return counted(kDictionary, value.size());
  }
};

/// Numbers the objects in the phone's order: containers before their contents, and the keys of a
/// dictionary before its values.
class Writer {
 public:
  Data list(const PropertyList& root);

 private:
  struct Object {
    std::string bytes;
    std::vector<std::size_t> references;
  };

  std::size_t add(const PropertyList& value);
  std::size_t addScalar(std::string bytes);

  std::vector<Object> objects_;
  std::unordered_map<std::string, std::size_t> scalars_;
};

std::size_t Writer::addScalar(std::string bytes) {
  const auto [found, isNew] = scalars_.try_emplace(std::move(bytes), objects_.size());
  if (isNew) objects_.push_back({found->first, {}});
  return found->second;
}

std::size_t Writer::add(const PropertyList& value) {
  const auto kind = value.kind();
  auto bytes = std::visit(Head(), value.value());
  if (kind != PropertyList::Kind::kArray && kind != PropertyList::Kind::kDictionary) {
    return addScalar(std::move(bytes));
  }
  const std::size_t index = objects_.size();
  objects_.push_back({std::move(bytes), {}});
  std::vector<std::size_t> references;
  for (const auto& item : value.items()) references.push_back(add(item));
  for (const auto& [key, item] : value.entries()) references.push_back(addScalar(textObject(key)));
  for (const auto& [key, item] : value.entries()) references.push_back(add(item));
  objects_[index].references = std::move(references);
  return index;
}

Data Writer::list(const PropertyList& root) {
  add(root);
  const auto referenceSize = sizeOf(objects_.size());
  std::string bytes(kMark);
  std::vector<std::size_t> offsets;
  for (const auto& object : objects_) {
    offsets.push_back(bytes.size());
    bytes += object.bytes;
    for (const auto reference : object.references) bytes += bigEndian(reference, referenceSize);
  }
  const auto table = bytes.size();
  const auto offsetSize = sizeOf(table);
  for (const auto offset : offsets) bytes += bigEndian(offset, offsetSize);
  bytes += bigEndian(offsetSize << 8 | referenceSize, 8) + bigEndian(objects_.size(), 8) +
           bigEndian(0, 8) + bigEndian(table, 8);
  const auto content = std::as_bytes(std::span(bytes));
  return {content.begin(), content.end()};
}

}  // namespace

std::optional<PropertyList> propertyListWithBinary(std::span<const std::byte> data) {
  return BinaryReader(data).list();
}

Data binaryWithPropertyList(const PropertyList& list) {
  return Writer().list(list);
}

}  // namespace vantrel
