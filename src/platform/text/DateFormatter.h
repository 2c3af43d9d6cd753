#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"
#include "platform/text/Locale.h"
#include "platform/text/TimeZone.h"

namespace vantrel {

/// Writes and reads dates by a locale's styles or by a pattern (Unicode TR 35). Building the
/// underlying formatter is costly and is put off to the first use after a change of style, pattern
/// or locale; a change of zone costs nothing. One thread at a time.
class DateFormatter {
 public:
  enum class Style { kNone = 0, kShort = 1, kMedium = 2, kLong = 3, kFull = 4 };

  DateFormatter();
  ~DateFormatter();
  DateFormatter(DateFormatter&&) noexcept;
  DateFormatter& operator=(DateFormatter&&) noexcept;

  void setLocale(const Locale& locale);
  /// Nothing means the device's zone.
  void setTimeZone(const std::optional<TimeZone>& zone);
  void setDateStyle(Style style);
  void setTimeStyle(Style style);
  /// A pattern; it takes the place of the styles.
  void setDateFormat(std::string_view pattern);
  /// The locale's pattern for the fields of a template, which are those of patterns in any order;
  /// "j" is the hour as the locale prefers it. Empty when the library has none.
  static std::string dateFormatFromTemplate(std::string_view fields, const Locale& locale);
  /// The pattern in force.
  std::string dateFormat() const;

  std::string stringFromDate(Date date) const;
  /// The instant that the whole text tells; nothing when it does not fit the pattern.
  std::optional<Date> dateFromString(std::string_view text) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace vantrel
