#include "platform/system/StringTable.h"

#include <unicode/unistr.h>

#include <algorithm>
#include <optional>
#include <string_view>

#include "base/Ascii.h"
#include "platform/archive/PropertyList.h"
#include "platform/text/Utf8.h"

namespace vantrel {

namespace {

tl::unexpected<Error> damaged(const std::string& why) {
  return tl::unexpected(Error{"StringTable", 1, "The string table is damaged: " + why, {}});
}

std::optional<std::u16string> utf16Text(std::string_view bytes, bool bigEndian) {
  if (bytes.size() % 2 != 0) return std::nullopt;
  std::u16string text;
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    text += static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first);
  }
  return text;
}

std::optional<std::u16string> utf8Text(std::string_view bytes) {
  if (!isUtf8(bytes)) return std::nullopt;
  const auto text = icu::UnicodeString::fromUTF8(bytes);
  return std::u16string(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

std::optional<std::u16string> decodedText(std::string_view bytes) {
  if (bytes.starts_with("\xff\xfe")) return utf16Text(bytes.substr(2), false);
  if (bytes.starts_with("\xfe\xff")) return utf16Text(bytes.substr(2), true);
  if (bytes.starts_with("\xef\xbb\xbf")) bytes.remove_prefix(3);
  return utf8Text(bytes);
}

std::string utf8String(std::u16string_view text) {
  std::string result;
  icu::UnicodeString(false, text.data(), static_cast<std::int32_t>(text.size()))
      .toUTF8String(result);
  return result;
}

bool isBlank(char16_t unit) {
  return unit == u' ' || (unit >= u'\t' && unit <= u'\r') || unit == u'\u2028' || unit == u'\u2029';
}

bool isUnquoted(char16_t unit) {
  return isAsciiWordCharacter(unit) ||
         std::u16string_view(u"$+/:.-").find(unit) != std::u16string_view::npos;
}

/// Parses the text form in UTF-16, so that two escaped surrogates become one character.
class StringsReader {
 public:
  explicit StringsReader(std::u16string_view text) : text_(text) {}
  Expected<StringTable> table();

 private:
  bool at(std::u16string_view token) const { return text_.substr(at_).starts_with(token); }
  bool take(char16_t unit);
  /// Returns false if a comment does not end.
  bool skipBlanks();
  std::optional<std::u16string> string();
  std::optional<std::u16string> quoted();
  char16_t escaped();
  char16_t number(int base, int mostDigits);
  tl::unexpected<Error> failure(const std::string& what) const;

  std::u16string_view text_;
  std::size_t at_ = 0;
};

tl::unexpected<Error> StringsReader::failure(const std::string& what) const {
  const auto lines =
      std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(at_), u'\n');
  return damaged(what + " in line " + std::to_string(lines + 1) + ".");
}

bool StringsReader::take(char16_t unit) {
  const bool found = at_ < text_.size() && text_[at_] == unit;
  if (found) ++at_;
  return found;
}

bool StringsReader::skipBlanks() {
  while (at_ < text_.size()) {
    if (isBlank(text_[at_])) {
      ++at_;
    } else if (at(u"//")) {
      at_ = std::min(text_.find(u'\n', at_), text_.size());
    } else if (at(u"/*")) {
      const auto end = text_.find(u"*/", at_ + 2);
      if (end == std::u16string_view::npos) return false;
      at_ = end + 2;
    } else {
      break;
    }
  }
  return true;
}

char16_t StringsReader::number(int base, int mostDigits) {
  int value = 0;
  for (int i = 0; i < mostDigits && at_ < text_.size() && hexDigitValue(text_[at_]) < base; ++i) {
    value = value * base + hexDigitValue(text_[at_++]);
  }
  return static_cast<char16_t>(value);
}

char16_t StringsReader::escaped() {
  constexpr std::u16string_view kLetters = u"abfnrtv";
  constexpr std::u16string_view kControls = u"\a\b\f\n\r\t\v";
  const char16_t unit = text_[at_++];
  const auto letter = kLetters.find(unit);
  if (letter != std::u16string_view::npos) return kControls[letter];
  const bool isHexadecimal = unit == u'U' || unit == u'u';
  if (isHexadecimal && at_ < text_.size() && hexDigitValue(text_[at_]) < 16) return number(16, 4);
  if (hexDigitValue(unit) >= 8) return unit;
  --at_;
  return number(8, 3);
}

std::optional<std::u16string> StringsReader::quoted() {
  const char16_t quote = text_[at_++];
  std::u16string result;
  while (at_ < text_.size()) {
    const char16_t unit = text_[at_++];
    if (unit == quote) return result;
    if (unit == u'\\' && at_ < text_.size()) {
      result += escaped();
    } else {
      result += unit;
    }
  }
  return std::nullopt;
}

std::optional<std::u16string> StringsReader::string() {
  if (at(u"\"") || at(u"'")) return quoted();
  const auto begin = at_;
  while (at_ < text_.size() && isUnquoted(text_[at_])) ++at_;
  if (at_ == begin) return std::nullopt;
  return std::u16string(text_.substr(begin, at_ - begin));
}

Expected<StringTable> StringsReader::table() {
  StringTable result;
  for (;;) {
    if (!skipBlanks()) return failure("unterminated comment");
    if (at_ == text_.size()) return result;
    const auto key = string();
    if (!key) return failure("expected a key");
    std::optional<std::u16string> value(std::in_place);
    bool clean = skipBlanks();
    if (take(u'=')) {
      clean = clean && skipBlanks();
      value = string();
      if (!value) return failure("expected a text for \"" + utf8String(*key) + "\"");
      clean = clean && skipBlanks();
    }
    if (!clean || !take(u';'))
      return failure("expected a semicolon after \"" + utf8String(*key) + "\"");
    result[utf8String(*key)] = utf8String(*value);
  }
}

Expected<StringTable> tableWithPropertyList(std::span<const std::byte> data) {
  const auto list = PropertyList::propertyListWithData(data);
  if (!list) return tl::unexpected(list.error());
  if (list->kind() != PropertyList::Kind::kDictionary) return damaged("expected a dictionary.");
  StringTable result;
  for (const auto& [key, value] : list->entries()) {
    if (const auto text = value.asString()) result[key] = *text;
  }
  return result;
}

}  // namespace

Expected<StringTable> stringTableWithData(std::span<const std::byte> data) {
  const std::string_view bytes(reinterpret_cast<const char*>(data.data()), data.size());
  if (bytes.starts_with("bplist00") || bytes.starts_with("<?xml")) {
    return tableWithPropertyList(data);
  }
  const auto text = decodedText(bytes);
  if (!text) return damaged("it is neither UTF-8 nor UTF-16.");
  return StringsReader(*text).table();
}

}  // namespace vantrel
