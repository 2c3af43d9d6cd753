#include "platform/archive/XmlPropertyList.h"

#include <plist/plist.h>

#include <cstdlib>
#include <memory>
#include <tuple>

#include "platform/archive/BinaryPropertyList.h"
#include "platform/text/Utf8.h"

namespace vantrel {

namespace {

/// Half of the memory limit; the other half is for the bytes of the values.
constexpr std::size_t kMaxElements = PropertyList::kMaxMemory / PropertyList::kNodeCost / 2;

/// Whether libplist can parse `text` safely: it recurses, and aborts the process for some lists.
/// Checks the depth, the number of elements and the encoding, and leaves other damage to libplist.
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
    // Quotes and document types could hide tags from this count. Property lists need them outside
    // of all values only.
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

/// Converts one value by way of its binary form: libplist's getters truncate dates to 32 bits and
/// do not report the sign of integers. Not used for complete lists, as libplist writes them in
/// O(n^2).
std::optional<PropertyList> scalar(plist_t node) {
  char* content = nullptr;
  std::uint32_t size = 0;
  plist_to_bin(node, &content, &size);
  const std::unique_ptr<char, decltype(&plist_to_bin_free)> binary(content, plist_to_bin_free);
  auto value = propertyListWithBinary(std::as_bytes(std::span(content, size)));
  // libplist writes reals in 32 bits if they fit.
  const auto real = value ? value->asReal() : std::nullopt;
  return real ? PropertyList::real(*real) : value;
}

std::optional<PropertyList> converted(plist_t node) {
  const auto type = plist_get_node_type(node);
  const bool isArray = type == PLIST_ARRAY;
  if (!isArray && type != PLIST_DICT) return scalar(node);
  PropertyList::Array items;
  PropertyList::Dictionary entries;
  void* next = nullptr;
  isArray ? plist_array_new_iter(node, &next) : plist_dict_new_iter(node, &next);
  const std::unique_ptr<void, decltype(&std::free)> iterator(next, std::free);
  for (;;) {
    char* name = nullptr;
    plist_t item = nullptr;
    isArray ? plist_array_next_item(node, next, &item)
            : plist_dict_next_item(node, next, &name, &item);
    const std::unique_ptr<char, decltype(&std::free)> key(name, std::free);
    if (!item) break;
    auto value = converted(item);
    if (!value || (name && !isUtf8(name))) return std::nullopt;
    if (isArray) {
      items.push_back(std::move(*value));
    } else {
      entries.emplace_back(name ? name : "", std::move(*value));
    }
  }
  return isArray ? PropertyList(std::move(items)) : PropertyList(std::move(entries));
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
