#pragma once

#include <optional>

#include "platform/text/DateFormatter.h"
#include "platform/text/NumberFormatter.h"
#include "platform/text/TimeZone.h"

namespace vantrel {

/// Creates date and number formatters: three shared ones for users, in the locale that was current
/// when they were created, and fixed formats for machines.
class Formatters {
 public:
  /// Thread-safe; its formatters are not. setTimeZone() affects all users of the instance.
  static Formatters& sharedInstance();

  Formatters();

  /// Hour and minute.
  const DateFormatter& shortTimeFormatter() const { return shortTimeFormatter_; }
  /// Day, month and year in the locale's short pattern; "dd/MM/y" and "MM/dd/y" get a year of two
  /// digits.
  const DateFormatter& shortDateFormatter() const { return shortDateFormatter_; }
  /// Date and time in the locale's short patterns.
  const DateFormatter& shortDateTimeFormatter() const { return shortDateTimeFormatter_; }
  /// Sets the zone of all three; `nullopt` is the device's zone, which is also the initial one.
  void setTimeZone(const std::optional<TimeZone>& zone);

  /// "2024-03-05T12:00:00Z", in UTC; does not parse texts with an offset.
  static DateFormatter RFC3339DateFormatter();
  /// Like RFC3339DateFormatter(), but parses any offset: "2024-03-05T14:00:00+02:00".
  static DateFormatter RFC3339DateFormatterWithSpecificTimeZone();
  /// Decimal point, no grouping, at most 20 fraction digits, in every locale.
  static NumberFormatter enUSPosixNumberFormatter();
  /// "15 Mar" or "Mar 15", depending on the current locale.
  static DateFormatter dateFormatterWithMediumMonthAndNoYear();
  /// The same with hour and minute, on the locale's 12-hour or 24-hour clock.
  static DateFormatter dateTimeFormatterWithMediumMonthAndNoYear();

 private:
  DateFormatter shortTimeFormatter_;
  DateFormatter shortDateFormatter_;
  DateFormatter shortDateTimeFormatter_;
};

}  // namespace vantrel
