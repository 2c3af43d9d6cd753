#include "platform/archive/XmlPropertyList.h"

#include <plist/plist.h>

#include <cstdlib>
#include <memory>
#include <tuple>

#include "platform/archive/BinaryPropertyList.h"
#include "platform/text/Utf8.h"

namespace vantrel {

namespace {

/// Half of what fits the memory, as the bytes of the values need room beside.
constexpr std::size_t kMaxElements = PropertyList::kMaxMemory / PropertyList::kNodeCost / 2;

/// The library reads XML by recursion and ends the process over some lists, so that their depth,
/// the number of their elements and their text are checked first; other damage is left to the
/// library.
bool isBounded(std::string_view text) {
  constexpr auto kEnd = std::string_view::npos;
  if (!isUtf8(text) || text.find('\0') != kEnd) return false;
  std::size_t elements = 0;
  std::size_t depth = 0;
  for (auto at = text.find('<'); at != kEnd; at = text.find('<', at)) {
    std::string_view opener = "<";
    std::string_view terminator = ">";
    if (text.substr(at).starts_with("<!--"))
      std::tie(opener, terminator) = std::pair("<!--", "-->");
    if (text.substr(at).starts_with("<![CDATA["))
      std::tie(opener, terminator) = std::pair("<![CDATA[", "]]>");
    if (text.substr(at).starts_with("<?")) terminator = "?>";
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
    if (++elements > kMaxElements) return false;
    if ((tag.starts_with("/array") || tag.starts_with("/dict")) && depth-- == 0) return false;
    const bool opens = tag.starts_with("array") || tag.starts_with("dict");
    if (opens && !tag.ends_with('/') && ++depth >= PropertyList::kMaxDepth) return false;
  }
  return true;
}

/// The library's calls for single values cut dates to 32 bits of seconds and do not report the sign
/// of an integer; its binary form holds both.
std::optional<PropertyList> exactValue(plist_t node) {
  char* content = nullptr;
  std::uint32_t size = 0;
  plist_to_bin(node, &content, &size);
  const std::unique_ptr<char, decltype(&plist_to_bin_free)> binary(content, plist_to_bin_free);
  return propertyListWithBinary(std::as_bytes(std::span(content, size)));
}

std::optional<PropertyList> convertedArray(plist_t node);
std::optional<PropertyList> convertedDictionary(plist_t node);

std::optional<PropertyList> converted(plist_t node) {
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
      std::uint8_t value = 0;
      plist_get_bool_val(node, &value);
      return PropertyList::boolean(value != 0);
    }
    case PLIST_UINT: {
      std::uint64_t value = 0;
      plist_get_uint_val(node, &value);
      const bool hasSign = value >> 63 != 0;
      return hasSign ? exactValue(node) : PropertyList::integer(static_cast<std::int64_t>(value));
    }
    case PLIST_REAL: {
      double value = 0;
      plist_get_real_val(node, &value);
      return PropertyList::real(value);
    }
    case PLIST_STRING: {
      std::uint64_t size = 0;
      const char* text = plist_get_string_ptr(node, &size);
      if (!isUtf8({text, size})) return std::nullopt;
      return PropertyList::string({text, size});
    }
    case PLIST_DATA: {
      std::uint64_t size = 0;
      const char* content = plist_get_data_ptr(node, &size);
      return PropertyList::data(std::as_bytes(std::span(content, size)));
    }
    case PLIST_ARRAY:
      return convertedArray(node);
    case PLIST_DICT:
      return convertedDictionary(node);
    default:
      return exactValue(node);
  }
}

std::optional<PropertyList> convertedArray(plist_t node) {
  PropertyList::Array items;
  plist_array_iter next = nullptr;
  plist_array_new_iter(node, &next);
  const std::unique_ptr<void, decltype(&std::free)> iterator(next, std::free);
  for (;;) {
    plist_t item = nullptr;
    plist_array_next_item(node, next, &item);
    if (!item) return PropertyList(std::move(items));
    auto value = converted(item);
    if (!value) return std::nullopt;
    items.push_back(std::move(*value));
  }
}

std::optional<PropertyList> convertedDictionary(plist_t node) {
  PropertyList::Dictionary entries;
  plist_dict_iter next = nullptr;
  plist_dict_new_iter(node, &next);
  const std::unique_ptr<void, decltype(&std::free)> iterator(next, std::free);
  for (;;) {
    char* name = nullptr;
    plist_t item = nullptr;
    plist_dict_next_item(node, next, &name, &item);
    const std::unique_ptr<char, decltype(&std::free)> key(name, std::free);
    if (!item) return PropertyList(std::move(entries));
    auto value = key && isUtf8(name) ? converted(item) : std::nullopt;
    if (!value) return std::nullopt;
    entries.emplace_back(name, std::move(*value));
  }
}

}  // namespace

std::optional<PropertyList> propertyListWithXml(std::span<const std::byte> data) {
  const std::string_view text(reinterpret_cast<const char*>(data.data()), data.size());
  if (!isBounded(text)) return std::nullopt;
  plist_t read = nullptr;
  plist_from_xml(text.data(), static_cast<std::uint32_t>(text.size()), &read);
  const std::unique_ptr<void, decltype(&plist_free)> list(read, plist_free);
  return list ? converted(list.get()) : std::nullopt;
}

}  // namespace vantrel
