#include "time/Formatters.h"

#include <string_view>

namespace vantrel {

namespace {

using Style = DateFormatter::Style;

DateFormatter styled(Style date, Style time) {
  DateFormatter formatter;
  formatter.setDateStyle(date);
  formatter.setTimeStyle(time);
  return formatter;
}

DateFormatter posixInUtc(std::string_view pattern) {
  DateFormatter formatter;
  formatter.setLocale(Locale("en_US_POSIX"));
  formatter.setDateFormat(pattern);
  formatter.setTimeZone(TimeZone::timeZoneForSecondsFromGMT(0));
  return formatter;
}

DateFormatter fromTemplate(std::string_view fields, const Locale& locale) {
  DateFormatter formatter;
  formatter.setLocale(locale);
  formatter.setDateFormat(DateFormatter::dateFormatFromTemplate(fields, locale));
  return formatter;
}

}  // namespace

Formatters& Formatters::sharedInstance() {
  static Formatters formatters;
  return formatters;
}

Formatters::Formatters()
    : shortTimeFormatter_(styled(Style::kNone, Style::kShort)),
      shortDateFormatter_(styled(Style::kShort, Style::kNone)),
      shortDateTimeFormatter_(styled(Style::kShort, Style::kShort)) {
  const auto pattern = shortDateFormatter_.dateFormat();
  if (pattern == "dd/MM/y") {
    shortDateFormatter_.setDateFormat("dd/MM/yy");
  } else if (pattern == "MM/dd/y") {
    shortDateFormatter_.setDateFormat("MM/dd/yy");
  }
}

void Formatters::setTimeZone(const std::optional<TimeZone>& zone) {
  shortDateFormatter_.setTimeZone(zone);
  shortTimeFormatter_.setTimeZone(zone);
  shortDateTimeFormatter_.setTimeZone(zone);
}

DateFormatter Formatters::RFC3339DateFormatter() {
  return posixInUtc("yyyy'-'MM'-'dd'T'HH':'mm':'ss'Z'");
}

DateFormatter Formatters::RFC3339DateFormatterWithSpecificTimeZone() {
  return posixInUtc("yyyy-MM-dd'T'HH:mm:ssZZZZZ");
}

NumberFormatter Formatters::enUSPosixNumberFormatter() {
  constexpr int kMostFractionDigits = 20;
  NumberFormatter formatter;
  formatter.setLocale(Locale("en_US_POSIX"));
  formatter.setMinimumIntegerDigits(1);
  formatter.setMaximumFractionDigits(kMostFractionDigits);
  formatter.setUsesGroupingSeparator(false);
  return formatter;
}

DateFormatter Formatters::dateFormatterWithMediumMonthAndNoYear() {
  return fromTemplate("dMMM", Locale::currentLocale());
}

DateFormatter Formatters::dateTimeFormatterWithMediumMonthAndNoYear() {
  const Locale locale = Locale::currentLocale();
  // Only 12-hour patterns contain a day-period marker, "a".
  const auto hour = DateFormatter::dateFormatFromTemplate("j", locale);
  const bool twelveHours = hour.find('a') != std::string::npos;
  return fromTemplate(twelveHours ? "dMMMhmm" : "dMMMHmm", locale);
}

}  // namespace vantrel
