#pragma once

#include <unicode/udat.h>
#include <unicode/udatpg.h>
#include <unicode/unistr.h>

#include <array>
#include <string>

#include "base/Date.h"

namespace vantrel::test {

/// The text of ICU's C API with its own zone rules, for styles, or for `pattern` if both styles are
/// UDAT_PATTERN.
inline std::string icuText(const std::string& locale, const std::string& zone,
                           UDateFormatStyle dateStyle, UDateFormatStyle timeStyle, Date date,
                           const icu::UnicodeString& pattern = {}) {
  UErrorCode status = U_ZERO_ERROR;
  const auto zoneId = icu::UnicodeString::fromUTF8(zone);
  UDateFormat* format = udat_open(timeStyle, dateStyle, locale.c_str(), zoneId.getBuffer(),
                                  zoneId.length(), pattern.getBuffer(), pattern.length(), &status);
  std::array<char16_t, 200> text{};
  const auto length = udat_format(format, date.timeIntervalSince1970() * 1000, text.data(),
                                  int32_t{text.size()}, nullptr, &status);
  udat_close(format);
  std::string result;
  return icu::UnicodeString(text.data(), length).toUTF8String(result);
}

/// ICU's pattern for the fields of a template.
inline icu::UnicodeString icuPattern(const std::string& locale, const std::u16string& fields) {
  UErrorCode status = U_ZERO_ERROR;
  UDateTimePatternGenerator* generator = udatpg_open(locale.c_str(), &status);
  std::array<char16_t, 200> text{};
  const auto length = udatpg_getBestPattern(generator, fields.data(), int32_t(fields.size()),
                                            text.data(), int32_t{text.size()}, &status);
  udatpg_close(generator);
  return {text.data(), length};
}

}  // namespace vantrel::test
