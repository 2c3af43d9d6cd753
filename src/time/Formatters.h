#pragma once

#include <optional>

#include "platform/text/DateFormatter.h"
#include "platform/text/NumberFormatter.h"
#include "platform/text/TimeZone.h"

namespace vantrel {

/// Where date and number formatters are configured: three for what people read, in the locale that
/// was current when they were made, and fixed formats for programs.
class Formatters {
 public:
  /// Made on the first call, by whichever thread comes first. What it gives out is not guarded: one
  /// thread at a time, and a change of zone is everyone's.
  static Formatters& sharedInstance();

  Formatters();

  /// Hours and minutes.
  const DateFormatter& shortTimeFormatter() const { return shortTimeFormatter_; }
  /// Day, month and year, the year in two digits where the locale's pattern is "dd/MM/y" or
  /// "MM/dd/y"; every other pattern stays the locale's own.
  const DateFormatter& shortDateFormatter() const { return shortDateFormatter_; }
  /// Both, the year as the locale has it.
  const DateFormatter& shortDateTimeFormatter() const { return shortDateTimeFormatter_; }
  /// The zone of all three, at first the device's; nothing means the device's. Costs nothing.
  void setTimeZone(const std::optional<TimeZone>& zone);

  /// "2024-03-05T12:00:00Z", always UTC with that letter; texts with an offset are refused.
  static DateFormatter RFC3339DateFormatter();
  /// Reads any offset, "2024-03-05T14:00:00+02:00", and writes UTC.
  static DateFormatter RFC3339DateFormatterWithSpecificTimeZone();
  /// Decimal point, no grouping, at most 20 fraction digits, whatever the locale.
  static NumberFormatter enUSPosixNumberFormatter();
  /// "15 Mar" or "Mar 15", as the current locale has it, in the device's zone.
  static DateFormatter dateFormatterWithMediumMonthAndNoYear();
  /// The same with hours and minutes, on a clock of 12 or of 24 hours by the locale's habit.
  static DateFormatter dateTimeFormatterWithMediumMonthAndNoYear();

 private:
  DateFormatter shortTimeFormatter_;
  DateFormatter shortDateFormatter_;
  DateFormatter shortDateTimeFormatter_;
};

}  // namespace vantrel
