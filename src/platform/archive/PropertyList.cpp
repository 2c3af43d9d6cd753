#include "platform/archive/PropertyList.h"

#include <plist/plist.h>

#include <array>
#include <bit>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <system_error>

#include "platform/archive/BinaryTrailer.h"
#include "platform/archive/PropertyListCheck.h"
#include "platform/archive/WideReal.h"

namespace vantrel {

namespace {

constexpr std::string_view kBinaryMark = "bplist00";

Error damaged() {
  return {"PropertyList", 1, "The property list is damaged or too large.", {}};
}

Error fileError(int code, const std::filesystem::path& url) {
  return {"POSIX",
          code,
          url.string() + ": " + std::error_code(code, std::generic_category()).message(),
          {}};
}

std::span<const std::byte> bytes(const char* text, std::size_t size) {
  return {reinterpret_cast<const std::byte*>(text), size};
}

Data binaryData(plist_t node) {
  char* text = nullptr;
  std::uint32_t size = 0;
  plist_to_bin(node, &text, &size);
  const auto content = bytes(text, text ? size : 0);
  Data result(content.begin(), content.end());
  plist_to_bin_free(text);
  return result;
}

plist_t nodeWithBinary(std::span<const std::byte> data) {
  plist_t node = nullptr;
  plist_from_bin(reinterpret_cast<const char*>(data.data()),
                 static_cast<std::uint32_t>(data.size()), &node);
  return node;
}

// The library's own calls cut dates to microseconds and to 32 bits of seconds, its binary form has
// all 64 bits. A list of one date is that form: mark, marker, big-endian real, offset, trailer.
constexpr std::size_t kDateAt = kBinaryMark.size() + 1;
constexpr std::uint8_t kDateMarker = 0x33;

plist_t nodeWithDate(double seconds) {
  std::array<std::uint8_t, kDateAt + 8 + 1 + 32> list{};
  std::memcpy(list.data(), kBinaryMark.data(), kBinaryMark.size());
  list[kDateAt - 1] = kDateMarker;
  const auto bits = std::bit_cast<std::uint64_t>(seconds);
  for (std::size_t i = 0; i < 8; ++i) {
    list[kDateAt + i] = static_cast<std::uint8_t>(bits >> (56 - 8 * i));
  }
  constexpr std::size_t kTable = kDateAt + 8;
  list[kTable] = kDateAt - 1;
  list[kTable + 7] = 1;   // offset size
  list[kTable + 8] = 1;   // reference size
  list[kTable + 16] = 1;  // object count
  list[kTable + 32] = kTable;
  return nodeWithBinary(std::as_bytes(std::span(list)));
}

double secondsOfDate(plist_t node) {
  return std::bit_cast<double>(bigEndianNumber(binaryData(node), kDateAt, sizeof(double)));
}

/// The real that a date in the library's hands stands for.
std::optional<double> wideReal(plist_t node) {
  if (plist_get_node_type(node) != PLIST_DATE) return std::nullopt;
  return wideRealForDate(secondsOfDate(node));
}

}  // namespace

Expected<Data> dataWithContentsOfURL(const std::filesystem::path& url) {
  std::error_code error;
  const auto size = std::filesystem::file_size(url, error);
  if (error) return tl::unexpected(fileError(error.value(), url));
  if (size > PropertyList::kMaxBytes) return tl::unexpected(fileError(EFBIG, url));
  errno = 0;
  std::ifstream file(url, std::ios::binary);
  Data data(size);
  if (!file.read(reinterpret_cast<char*>(data.data()), static_cast<std::streamsize>(size))) {
    return tl::unexpected(fileError(errno ? errno : EIO, url));
  }
  return data;
}

PropertyList PropertyList::owning(void* node) {
  return PropertyList(std::shared_ptr<void>(node, plist_free));
}

PropertyList PropertyList::child(void* node) const {
  return node ? PropertyList(std::shared_ptr<void>(node_, node)) : PropertyList();
}

void PropertyList::detach() {
  if (node_.use_count() > 1) node_ = std::shared_ptr<void>(plist_copy(node_.get()), plist_free);
}

PropertyList PropertyList::boolean(bool value) {
  return owning(plist_new_bool(value));
}

PropertyList PropertyList::integer(std::int64_t value) {
  return owning(plist_new_uint(static_cast<std::uint64_t>(value)));
}

PropertyList PropertyList::real(double value) {
  const auto date = dateForWideReal(value);
  return owning(date ? nodeWithDate(*date) : plist_new_real(value));
}

PropertyList PropertyList::realOfSinglePrecision(float value) {
  return owning(plist_new_real(static_cast<double>(value)));
}

PropertyList PropertyList::string(const std::string& value) {
  return owning(plist_new_string(value.c_str()));
}

PropertyList PropertyList::date(Date value) {
  return owning(nodeWithDate(value.timeIntervalSinceReferenceDate()));
}

PropertyList PropertyList::data(std::span<const std::byte> value) {
  return owning(plist_new_data(reinterpret_cast<const char*>(value.data()), value.size()));
}

PropertyList PropertyList::uid(std::uint64_t value) {
  return owning(plist_new_uid(value));
}

PropertyList PropertyList::array(std::span<const PropertyList> items) {
  auto result = owning(plist_new_array());
  for (const auto& item : items) result.append(item);
  return result;
}

PropertyList PropertyList::dictionary() {
  return owning(plist_new_dict());
}

Expected<PropertyList> PropertyList::propertyListWithData(std::span<const std::byte> data) {
  if (data.size() > kMaxBytes || data.empty()) return tl::unexpected(damaged());
  plist_t node = nullptr;
  if (std::memcmp(data.data(), kBinaryMark.data(), std::min(data.size(), kBinaryMark.size())) ==
      0) {
    Data list(data.begin(), data.end());
    hideWideReals(list);
    if (binaryPropertyListIsBounded(list)) node = nodeWithBinary(list);
  } else if (xmlPropertyListIsBounded(data)) {
    plist_from_xml(reinterpret_cast<const char*>(data.data()),
                   static_cast<std::uint32_t>(data.size()), &node);
  }
  if (!node) return tl::unexpected(damaged());
  return owning(node);
}

Expected<PropertyList> PropertyList::propertyListWithContentsOfURL(
    const std::filesystem::path& url) {
  const auto data = dataWithContentsOfURL(url);
  if (!data) return tl::unexpected(data.error());
  auto list = propertyListWithData(*data);
  if (!list) list.error().localizedDescription.insert(0, url.string() + ": ");
  return list;
}

Data PropertyList::binaryData() const {
  if (!node_) return {};
  Data list = vantrel::binaryData(node_.get());
  showWideReals(list);
  return list;
}

PropertyList::Kind PropertyList::kind() const {
  if (!node_) return Kind::kNothing;
  switch (plist_get_node_type(node_.get())) {
    case PLIST_BOOLEAN:
      return Kind::kBoolean;
    case PLIST_UINT:
      return Kind::kInteger;
    case PLIST_REAL:
      return Kind::kReal;
    case PLIST_STRING:
    case PLIST_KEY:
      return Kind::kString;
    case PLIST_DATE:
      return wideReal(node_.get()) ? Kind::kReal : Kind::kDate;
    case PLIST_DATA:
      return Kind::kData;
    case PLIST_UID:
      return Kind::kUid;
    case PLIST_ARRAY:
      return Kind::kArray;
    case PLIST_DICT:
      return Kind::kDictionary;
    case PLIST_NONE:
      break;
  }
  return Kind::kNothing;
}

std::optional<bool> PropertyList::asBoolean() const {
  if (kind() != Kind::kBoolean) return std::nullopt;
  std::uint8_t value = 0;
  plist_get_bool_val(node_.get(), &value);
  return value != 0;
}

std::optional<std::int64_t> PropertyList::asInteger() const {
  if (kind() != Kind::kInteger) return std::nullopt;
  std::uint64_t value = 0;
  plist_get_uint_val(node_.get(), &value);
  return static_cast<std::int64_t>(value);
}

std::optional<double> PropertyList::asReal() const {
  if (kind() != Kind::kReal) return std::nullopt;
  if (const auto wide = wideReal(node_.get())) return wide;
  double value = 0;
  plist_get_real_val(node_.get(), &value);
  return value;
}

std::optional<std::string> PropertyList::asString() const {
  if (kind() != Kind::kString) return std::nullopt;
  const char* text = plist_get_string_ptr(node_.get(), nullptr);
  return text ? std::string(text) : std::string();
}

std::optional<Date> PropertyList::asDate() const {
  if (kind() != Kind::kDate) return std::nullopt;
  return Date(secondsOfDate(node_.get()));
}

std::optional<Data> PropertyList::asData() const {
  if (kind() != Kind::kData) return std::nullopt;
  std::uint64_t size = 0;
  const char* text = plist_get_data_ptr(node_.get(), &size);
  const auto content = bytes(text, size);
  return Data(content.begin(), content.end());
}

std::optional<std::uint64_t> PropertyList::asUid() const {
  if (kind() != Kind::kUid) return std::nullopt;
  std::uint64_t value = 0;
  plist_get_uid_val(node_.get(), &value);
  return value;
}

std::size_t PropertyList::count() const {
  if (kind() == Kind::kArray) return plist_array_get_size(node_.get());
  if (kind() == Kind::kDictionary) return plist_dict_get_size(node_.get());
  return 0;
}

std::vector<PropertyList> PropertyList::items() const {
  std::vector<PropertyList> result;
  if (kind() != Kind::kArray) return result;
  result.reserve(count());
  plist_array_iter iterator = nullptr;
  plist_array_new_iter(node_.get(), &iterator);
  for (;;) {
    plist_t item = nullptr;
    plist_array_next_item(node_.get(), iterator, &item);
    if (!item) break;
    result.push_back(child(item));
  }
  std::free(iterator);
  return result;
}

std::vector<std::pair<std::string, PropertyList>> PropertyList::entries() const {
  std::vector<std::pair<std::string, PropertyList>> result;
  if (kind() != Kind::kDictionary) return result;
  result.reserve(count());
  plist_dict_iter iterator = nullptr;
  plist_dict_new_iter(node_.get(), &iterator);
  for (;;) {
    char* key = nullptr;
    plist_t value = nullptr;
    plist_dict_next_item(node_.get(), iterator, &key, &value);
    if (!value) break;
    result.emplace_back(key ? key : "", child(value));
    std::free(key);
  }
  std::free(iterator);
  return result;
}

PropertyList PropertyList::operator[](std::string_view key) const {
  if (kind() != Kind::kDictionary) return {};
  return child(plist_dict_get_item(node_.get(), std::string(key).c_str()));
}

void PropertyList::set(std::string_view key, const PropertyList& value) {
  if (kind() != Kind::kDictionary) return;
  plist_t copy = value ? plist_copy(value.node_.get()) : nullptr;
  detach();
  const std::string name(key);
  if (copy) {
    plist_dict_set_item(node_.get(), name.c_str(), copy);
  } else {
    plist_dict_remove_item(node_.get(), name.c_str());
  }
}

void PropertyList::append(const PropertyList& value) {
  if (kind() != Kind::kArray || !value) return;
  plist_t copy = plist_copy(value.node_.get());
  detach();
  plist_array_append_item(node_.get(), copy);
}

}  // namespace vantrel
