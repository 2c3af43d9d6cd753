#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"
#include "platform/text/Locale.h"
#include "platform/text/TimeZone.h"

namespace vantrel {

/// Formats and parses dates by a locale's styles or by a pattern (Unicode TR 35). The first use of
/// each combination of style and pattern is slow, as it creates ICU's formatter; `setLocale` and
/// `setDateFormat` discard the created ones. Not thread-safe.
class DateFormatter {
 public:
  enum class Style { kNone = 0, kShort = 1, kMedium = 2, kLong = 3, kFull = 4 };

  DateFormatter();
  ~DateFormatter();
  DateFormatter(DateFormatter&&) noexcept;
  DateFormatter& operator=(DateFormatter&&) noexcept;

  void setLocale(const Locale& locale);
  /// Without a value, the device's zone at each call.
  void setTimeZone(const std::optional<TimeZone>& zone);
  void setDateStyle(Style style);
  void setTimeStyle(Style style);
  /// Replaces the styles by a pattern, such as "yyyy-MM-dd". Setting a style removes the pattern.
  void setDateFormat(std::string_view pattern);
  /// Returns the locale's pattern for some fields in any order: for "yMd", "M/d/y" in en_US and
  /// "d.M.y" in de_DE. "j" is the hour in the locale's preferred form. Empty if ICU has no pattern.
  static std::string dateFormatFromTemplate(std::string_view fields, const Locale& locale);
  /// The current pattern, also of styles; empty if both styles are `kNone`.
  std::string dateFormat() const;

  /// Empty if `date` is not finite or both styles are `kNone`.
  std::string stringFromDate(Date date) const;
  /// `nullopt` unless the complete text matches the pattern.
  std::optional<Date> dateFromString(std::string_view text) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace vantrel
