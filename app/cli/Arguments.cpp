#include "cli/Arguments.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <string_view>

#include "base/Clock.h"
#include "common/ExitCode.h"
#include "platform/text/Utf8.h"

namespace vantrel::cli {

namespace {

constexpr double kSecondsPerDay = 86400;
constexpr int kDaysPerWeek = 7;
constexpr int kMostDaysAhead = 36500;
constexpr std::array<std::string_view, kDaysPerWeek> kWeekdays = {
    "monday", "tuesday", "wednesday", "thursday", "friday", "saturday", "sunday"};

/// `nullopt` unless all of `text` is a number.
template <typename Number>
std::optional<Number> number(std::string_view text) {
  // std::from_chars accepts no plus sign.
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  Number value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end) return std::nullopt;
  return value;
}

/// The days in "+3d" or "-2w".
std::optional<int> countedDays(std::string_view word) {
  if (word.size() < 3 || (word.front() != '+' && word.front() != '-')) return std::nullopt;
  const int unit = word.back() == 'd' ? 1 : word.back() == 'w' ? kDaysPerWeek : 0;
  const auto count = number<int>(word.substr(0, word.size() - 1));
  if (unit == 0 || !count || std::abs(*count) > kMostDaysAhead / unit) return std::nullopt;
  return *count * unit;
}

/// How many days after `today` (days since 2001-01-01, a Monday) `word` is. A weekday is the next
/// one, today included.
std::optional<int> daysAhead(std::string_view word, int today) {
  if (word == "today") return 0;
  if (word == "tomorrow") return 1;
  if (word == "yesterday") return -1;
  constexpr std::size_t kShortName = 3;
  for (int day = 0; day < kDaysPerWeek; ++day) {
    const std::string_view name = kWeekdays[static_cast<std::size_t>(day)];
    if (word != name && word != name.substr(0, kShortName)) continue;
    return ((day - today) % kDaysPerWeek + kDaysPerWeek) % kDaysPerWeek;
  }
  return countedDays(word);
}

/// Returns `text` with a relative day at its start replaced by that day in `zone`.
std::string withCalendarDay(const std::string& text, const TimeZone& zone) {
  const std::size_t wordEnd = text.find(' ');
  const Date now = Clock::sharedClock().now();
  const double wallSeconds = now.timeIntervalSinceReferenceDate() + zone.secondsFromGMTForDate(now);
  const auto today = static_cast<int>(std::floor(wallSeconds / kSecondsPerDay));
  const auto days = daysAhead(std::string_view(text).substr(0, wordEnd), today);
  if (!days) return text;
  const Date then(wallSeconds + *days * kSecondsPerDay);
  const std::string instant = iso8601String(then);
  const std::string day = instant.substr(0, instant.find('T'));
  return wordEnd == std::string::npos ? day : day + text.substr(wordEnd);
}

/// Degrees from -`limit` to `limit`.
Expected<double> degrees(const std::string& option, const std::string& text, int limit) {
  const auto degrees = number<double>(text);
  if (degrees && std::fabs(*degrees) <= limit) return *degrees;
  const std::string bound = std::to_string(limit);
  return invalidArgument(option, text, "degrees from -" + bound + " to " + bound);
}

}  // namespace

tl::unexpected<Error> invalidArgument(const std::string& option, std::string_view text,
                                      const std::string& expected) {
  constexpr std::size_t kMostQuoted = 40;
  const std::string_view quoted = beginning(text, kMostQuoted);
  return tl::unexpected(failure(kExitUsage, option,
                                "expected " + expected + ", got \"" + std::string(quoted) +
                                    (quoted.size() < text.size() ? "...\"" : "\"")));
}

double secondsOfWallTime(const WallTime& wall) {
  using std::chrono::day;
  using std::chrono::month;
  using std::chrono::sys_days;
  using std::chrono::year;
  const auto civil = year(wall.year) / month(static_cast<unsigned>(wall.month)) /
                     day(static_cast<unsigned>(wall.day));
  const auto days = (sys_days(civil) - sys_days(year(2001) / 1 / 1)).count();
  return static_cast<double>(days) * kSecondsPerDay + wall.hour * 3600 + wall.minute * 60 +
         wall.second;
}

Expected<DateInterval> dateIntervalFromArgument(const std::string& option, const std::string& text,
                                                const TimeZone& zone) {
  std::optional<Date> instant = dateFromIso8601String(text);
  if (text == "now") instant = Clock::sharedClock().now();
  if (instant) return DateInterval{*instant, *instant};
  const std::string absolute = withCalendarDay(text, zone);
  if (const auto wall = wallTimeFromIso8601String(absolute)) {
    const double seconds = secondsOfWallTime(*wall);
    const Date first = zone.dateForWallSeconds(seconds);
    if (absolute.find_first_of("T ") != std::string::npos) return DateInterval{first, first};
    const Date next = zone.dateForWallSeconds(seconds + kSecondsPerDay);
    return DateInterval{first, Date(std::nextafter(next.timeIntervalSinceReferenceDate(),
                                                   first.timeIntervalSinceReferenceDate()))};
  }
  return invalidArgument(option, text,
                         "a date such as 2026-07-15T21:40:00Z, \"2026-07-15 23:40\", 2026-07-15, "
                         "\"tomorrow 05:30\", friday, +3d or now");
}

Expected<Date> dateFromArgument(const std::string& option, const std::string& text) {
  return dateIntervalFromArgument(option, text).map(&DateInterval::first);
}

Expected<TimeZone> timeZoneFromArgument(const std::string& option, const std::string& text) {
  if (auto zone = TimeZone::timeZoneWithName(text)) return *zone;
  return invalidArgument(option, text, "a time zone such as Europe/Madrid");
}

Expected<double> latitudeFromArgument(const std::string& option, const std::string& text) {
  return degrees(option, text, 90);
}

Expected<double> longitudeFromArgument(const std::string& option, const std::string& text) {
  return degrees(option, text, 180);
}

std::optional<double> finiteNumber(std::string_view text) {
  const auto real = number<double>(text);
  return real && std::isfinite(*real) ? real : std::nullopt;
}

Expected<double> realFromArgument(const std::string& option, const std::string& text) {
  if (const auto real = finiteNumber(text)) return *real;
  return invalidArgument(option, text, "a decimal number");
}

Expected<float> floatFromArgument(const std::string& option, const std::string& text) {
  const auto real = number<float>(text);
  if (real && std::isfinite(*real)) return *real;
  return invalidArgument(option, text, "a single-precision number");
}

Expected<std::int64_t> integerFromArgument(const std::string& option, const std::string& text) {
  if (const auto integer = number<std::int64_t>(text)) return *integer;
  return invalidArgument(option, text, "a 64-bit integer");
}

Expected<bool> switchFromArgument(const std::string& option, const std::string& text) {
  for (const char* word : {"on", "yes", "true", "1"}) {
    if (text == word) return true;
  }
  for (const char* word : {"off", "no", "false", "0"}) {
    if (text == word) return false;
  }
  return invalidArgument(option, text, "on or off");
}

Expected<std::string> textFromArgument(const std::string& option, const std::string& text) {
  if (isUtf8(text)) return text;
  return invalidArgument(option, text, "UTF-8 text");
}

Expected<std::string> filledTextFromArgument(const std::string& option, const std::string& text) {
  if (text.find_first_not_of(' ') != std::string::npos) return textFromArgument(option, text);
  return invalidArgument(option, text, "a text that is not empty");
}

Expected<std::string> pathFromArgument(const std::string& option, const std::string& text) {
  if (!text.empty()) return text;
  return invalidArgument(option, text, "a path");
}

}  // namespace vantrel::cli
