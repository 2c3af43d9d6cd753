#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"
#include "base/Error.h"
#include "base/Iso8601.h"
#include "platform/text/TimeZone.h"

namespace vantrel::cli {

/// Parsers for the values of options and arguments. `option` is the name in error messages
/// ("--date"). Errors: kExitUsage, from `invalidArgument`.

/// Returns the error `option: expected …, got "text"`; a long `text` is cut.
tl::unexpected<Error> invalidArgument(const std::string& option, std::string_view text,
                                      const std::string& expected);

/// Seconds since 2001-01-01 00:00 on the same clock.
double secondsOfWallTime(const WallTime& wall);

struct DateInterval {
  Date first;
  Date last;  ///< The last instant of the day if only a day was given, otherwise `first`.
};
/// Accepts "now", an ISO 8601 instant, or a day with or without wall time in `zone`:
/// "2026-07-15 23:40", "2026-07-15", "tomorrow 05:30", "yesterday", "friday" or "fri" (today or
/// later), "+3d", "-2w".
Expected<DateInterval> dateIntervalFromArgument(const std::string& option, const std::string& text,
                                                const TimeZone& zone = TimeZone::defaultTimeZone());
/// Returns the first instant of that interval.
Expected<Date> dateFromArgument(const std::string& option, const std::string& text);

/// Accepts names of the system's time-zone database.
Expected<TimeZone> timeZoneFromArgument(const std::string& option, const std::string& text);

/// Degrees from -90 to 90, or -180 to 180.
Expected<double> latitudeFromArgument(const std::string& option, const std::string& text);
Expected<double> longitudeFromArgument(const std::string& option, const std::string& text);

/// `nullopt` unless all of `text` is a finite decimal number.
std::optional<double> finiteNumber(std::string_view text);
Expected<double> realFromArgument(const std::string& option, const std::string& text);
/// Rejects numbers outside the range of single precision.
Expected<float> floatFromArgument(const std::string& option, const std::string& text);
Expected<std::int64_t> integerFromArgument(const std::string& option, const std::string& text);

/// Accepts "on", "yes", "true", "1" or "off", "no", "false", "0".
Expected<bool> switchFromArgument(const std::string& option, const std::string& text);

/// Accepts any UTF-8 text.
Expected<std::string> textFromArgument(const std::string& option, const std::string& text);
/// Accepts UTF-8 text that has a character other than a space.
Expected<std::string> filledTextFromArgument(const std::string& option, const std::string& text);
/// Accepts any bytes, but not an empty text.
Expected<std::string> pathFromArgument(const std::string& option, const std::string& text);

}  // namespace vantrel::cli
