#include "platform/archive/XmlPropertyList.h"

#include <plist/plist.h>

#include <memory>
#include <tuple>

#include "platform/archive/BinaryPropertyList.h"
#include "platform/text/Utf8.h"

namespace vantrel {

namespace {

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
    if (++elements > PropertyList::kMaxMemory / PropertyList::kNodeCost) return false;
    if ((tag.starts_with("/array") || tag.starts_with("/dict")) && depth-- == 0) return false;
    const bool opens = tag.starts_with("array") || tag.starts_with("dict");
    if (opens && !tag.ends_with('/') && ++depth > PropertyList::kMaxDepth) return false;
  }
  return true;
}

}  // namespace

std::optional<PropertyList> propertyListWithXml(std::span<const std::byte> data) {
  const std::string_view text(reinterpret_cast<const char*>(data.data()), data.size());
  if (!isBounded(text)) return std::nullopt;
  plist_t read = nullptr;
  plist_from_xml(text.data(), static_cast<std::uint32_t>(text.size()), &read);
  const std::unique_ptr<void, decltype(&plist_free)> list(read, plist_free);
  if (!list) return std::nullopt;
  // The library's calls for single values cut dates to 32 bits of seconds and do not report the
  // sign of an integer; its binary form holds both.
  char* content = nullptr;
  std::uint32_t size = 0;
  plist_to_bin(list.get(), &content, &size);
  const std::unique_ptr<char, decltype(&plist_to_bin_free)> binary(content, plist_to_bin_free);
  if (!binary) return std::nullopt;
  // The library also writes reals in 32 bits if these suffice.
  return propertyListWithBinary(std::as_bytes(std::span(content, size)), RealSize::kAlways64);
}

}  // namespace vantrel
