#include "common/TerminalText.h"

#include <unicode/uchar.h>

#include <cstdint>
#include <iterator>
#include <utility>

#include "platform/text/Utf8.h"

namespace vantrel {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/// Terminals execute control characters; direction overrides can disguise text.
bool isUnsafe(UChar32 c) {
  const bool control = c < 0x20 || (c >= 0x7f && c < 0xa0);
  const bool lineBreak = c == 0x2028 || c == 0x2029;
  const bool directionOverride = (c >= 0x202a && c <= 0x202e) || (c >= 0x2066 && c <= 0x2069);
  return control || lineBreak || directionOverride;
}

std::size_t cellsOf(UChar32 c) {
  constexpr UChar32 kSoftHyphen = 0xad;
  if (c >= ' ' && c <= '~') return 1;
  const auto category = u_getIntPropertyValue(c, UCHAR_GENERAL_CATEGORY);
  const auto syllable = u_getIntPropertyValue(c, UCHAR_HANGUL_SYLLABLE_TYPE);
  const bool isCombining = category == U_NON_SPACING_MARK || category == U_ENCLOSING_MARK ||
                           (category == U_FORMAT_CHAR && c != kSoftHyphen) ||
                           syllable == U_HST_VOWEL_JAMO || syllable == U_HST_TRAILING_JAMO;
  if (isCombining) return 0;
  const auto width = u_getIntPropertyValue(c, UCHAR_EAST_ASIAN_WIDTH);
  return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

void appendPrintable(std::string& result, const CodePoints& at) {
  if (at.value() == '\t' || at.value() == '\n' || at.value() == '\r') {
    result += ' ';
  } else if (isUnsafe(at.value())) {
    result += kReplacement;
  } else {
    result += at.bytes();
  }
}

/// "\u009b" for an unsafe character, which all have at most four digits.
std::string escaped(UChar32 c) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text = "\\u";
  for (int shift = 12; shift >= 0; shift -= 4) text += kDigits[(c >> shift) & 0xf];
  return text;
}

}  // namespace

std::string printable(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (CodePoints at(text); at.next();) appendPrintable(result, at);
  return result;
}

std::string shown(const std::optional<std::string>& text) {
  return text && !text->empty() ? printable(*text) : kUnknown;
}

std::string shortIdentifier(std::string_view identifier) {
  constexpr std::size_t kShortIdentifier = 8;
  return printable(beginning(identifier, kShortIdentifier));
}

std::string printableLines(std::string_view text, std::string_view indent) {
  std::string result;
  for (CodePoints at(text); at.next();) {
    if (at.value() == '\n') {
      result += '\n';
      result += indent;
    } else if (at.value() != '\r') {
      appendPrintable(result, at);
    }
  }
  return result;
}

std::string printableFile(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  bool isAfterReturn = false;
  for (CodePoints at(text); at.next();) {
    const UChar32 c = at.value();
    // A return without a line feed would overwrite the line.
    if (std::exchange(isAfterReturn, c == '\r')) result += c == '\n' ? "\r" : kReplacement;
    if (c == '\t' || c == '\n') {
      result += at.bytes();
    } else if (c != '\r') {
      appendPrintable(result, at);
    }
  }
  return result;
}

std::string fileText(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (CodePoints at(text); at.next();) {
    const UChar32 c = at.value();
    const bool isWhiteSpace = c == '\t' || c == '\n' || c == '\r';
    const bool isControl = c < 0x20 || (c >= 0x7f && c < 0xa0);
    const bool isKept = isWhiteSpace || !(isControl || c == 0xfffe || c == 0xffff);
    result += isKept ? at.bytes() : kReplacement;
  }
  return result;
}

std::string printableJson(std::string_view json) {
  std::string result;
  result.reserve(json.size());
  for (CodePoints at(json); at.next();) {
    if (at.value() >= 0x7f && isUnsafe(at.value())) {
      result += escaped(at.value());
    } else {
      result += at.bytes();
    }
  }
  return result;
}

std::size_t cellWidth(std::string_view text) {
  constexpr UChar32 kEmojiStyle = 0xfe0f;
  std::size_t cells = 0;
  UChar32 before = 0;
  for (CodePoints at(text); at.next(); before = at.value()) {
    if (at.value() == kEmojiStyle && cellsOf(before) == 1 &&
        u_hasBinaryProperty(before, UCHAR_EMOJI)) {
      ++cells;
    }
    cells += cellsOf(at.value());
  }
  return cells;
}

std::string paddedToCells(std::string text, std::size_t cells) {
  const std::size_t width = cellWidth(text);
  if (width < cells) text.append(cells - width, ' ');
  return text;
}

}  // namespace vantrel
