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

/// What people type for a value, checked. `option` is what the error names ("--date"); errors end
/// the program with kExitUsage and say what is allowed.

/// The error for a value that is none, as `why` tells.
tl::unexpected<Error> refused(const std::string& option, const std::string& text,
                              const std::string& why);

/// Seconds since 2001-01-01 00:00 on the same clock.
double secondsOfWallTime(const WallTime& wall);

struct Moment {
  Date first;
  Date last;  ///< The last instant of the day when only a day was given, else the same as `first`.
};
/// "now", an ISO 8601 instant, or a day with or without wall time in `zone`: "2026-07-15 23:40",
/// "2026-07-15", "tomorrow 05:30", "yesterday", "friday" or "fri" (today or later), "+3d", "-2w".
Expected<Moment> momentFromArgument(const std::string& option, const std::string& text,
                                    const TimeZone& zone);

/// A name of the system's time-zone database.
Expected<TimeZone> timeZoneFromArgument(const std::string& option, const std::string& text);

/// Degrees from -90 to 90, or -180 to 180.
Expected<double> latitudeFromArgument(const std::string& option, const std::string& text);
Expected<double> longitudeFromArgument(const std::string& option, const std::string& text);

/// The finite decimal number that the whole text is.
std::optional<double> finiteNumber(std::string_view text);
/// The same of an argument.
Expected<double> realFromArgument(const std::string& option, const std::string& text);
/// One that single precision can hold.
Expected<float> floatFromArgument(const std::string& option, const std::string& text);
Expected<std::int64_t> integerFromArgument(const std::string& option, const std::string& text);

/// "on", "yes", "true", "1" or "off", "no", "false", "0".
Expected<bool> switchFromArgument(const std::string& option, const std::string& text);

/// Any UTF-8 text.
Expected<std::string> textFromArgument(const std::string& option, const std::string& text);
/// The same, but for blanks alone.
Expected<std::string> filledTextFromArgument(const std::string& option, const std::string& text);
/// Any bytes, for the system to judge, but not none.
Expected<std::string> pathFromArgument(const std::string& option, const std::string& text);

}  // namespace vantrel::cli
