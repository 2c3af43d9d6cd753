#include "cli/Arguments.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <string_view>

#include "base/Iso8601.h"
#include "cli/ExitCode.h"
#include "cli/TerminalText.h"
#include "platform/Clock.h"

namespace vantrel::cli {

namespace {

constexpr double kSecondsPerDay = 86400;
constexpr int kMostDaysAhead = 36500;
/// "2026-07-15"
constexpr std::size_t kDayLength = 10;

tl::unexpected<Error> refused(const std::string& option, const std::string& text,
                              const std::string& allowed) {
  return tl::make_unexpected(failure(kExitUsage, option + " \"" + text + "\"", allowed));
}

/// The number that the whole text is.
template <typename Number>
std::optional<Number> number(std::string_view text) {
  // A sign of its own, not one more.
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  Number value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end) return std::nullopt;
  return value;
}

/// How many days ahead "today", "tomorrow" or "+3d" is.
std::optional<int> daysAhead(std::string_view word) {
  if (word == "today") return 0;
  if (word == "tomorrow") return 1;
  if (word.size() < 3 || word.front() != '+' || word.back() != 'd') return std::nullopt;
  int days = 0;
  const char* end = word.data() + word.size() - 1;
  const auto [stop, error] = std::from_chars(word.data() + 1, end, days);
  if (error != std::errc() || stop != end || days < 0 || days > kMostDaysAhead) return std::nullopt;
  return days;
}

/// The text with a leading relative day replaced by that day on the zone's calendar.
std::string withCalendarDay(const std::string& text, const TimeZone& zone) {
  const std::size_t wordEnd = text.find(' ');
  const auto days = daysAhead(std::string_view(text).substr(0, wordEnd));
  if (!days) return text;
  const Date now = Clock::sharedClock().now();
  const double wallSeconds = now.timeIntervalSinceReferenceDate() +
                             zone.secondsFromGMTForDate(now) + *days * kSecondsPerDay;
  const std::string day = iso8601String(Date(wallSeconds)).substr(0, kDayLength);
  return wordEnd == std::string::npos ? day : day + text.substr(wordEnd);
}

double wallSeconds(const WallTime& wall) {
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

}  // namespace

Expected<Moment> momentFromArgument(const std::string& option, const std::string& text,
                                    const TimeZone& zone) {
  std::optional<Date> instant = dateFromIso8601String(text);
  if (text == "now") instant = Clock::sharedClock().now();
  if (instant) return Moment{*instant, *instant};
  const std::string absolute = withCalendarDay(text, zone);
  if (const auto wall = wallTimeFromIso8601String(absolute)) {
    const double seconds = wallSeconds(*wall);
    const Date first = zone.dateForWallSeconds(seconds);
    if (absolute.size() > kDayLength) return Moment{first, first};
    const Date next = zone.dateForWallSeconds(seconds + kSecondsPerDay);
    return Moment{first, Date(std::nextafter(next.timeIntervalSinceReferenceDate(),
                                             first.timeIntervalSinceReferenceDate()))};
  }
  return refused(option, text,
                 "no such date; allowed are 2026-07-15T21:40:00Z, \"2026-07-15 23:40\", "
                 "2026-07-15, \"tomorrow 05:30\", +3d, now");
}

Expected<TimeZone> timeZoneFromArgument(const std::string& option, const std::string& text) {
  if (auto zone = TimeZone::timeZoneWithName(text)) return *zone;
  return refused(option, text, "no such time zone; allowed are names such as Europe/Madrid");
}

Expected<double> degreesFromArgument(const std::string& option, const std::string& text,
                                     int limit) {
  const auto degrees = number<double>(text);
  if (degrees && std::fabs(*degrees) <= limit) return *degrees;
  const std::string bound = std::to_string(limit);
  return refused(option, text, "allowed are degrees from -" + bound + " to " + bound);
}

Expected<double> latitudeFromArgument(const std::string& option, const std::string& text) {
  constexpr int kMostLatitude = 90;
  return degreesFromArgument(option, text, kMostLatitude);
}

Expected<double> longitudeFromArgument(const std::string& option, const std::string& text) {
  constexpr int kMostLongitude = 180;
  return degreesFromArgument(option, text, kMostLongitude);
}

std::optional<double> finiteNumber(std::string_view text) {
  const auto real = number<double>(text);
  return real && std::isfinite(*real) ? real : std::nullopt;
}

Expected<double> realFromArgument(const std::string& option, const std::string& text) {
  if (const auto real = finiteNumber(text)) return *real;
  return refused(option, text, "allowed are decimal numbers");
}

Expected<float> floatFromArgument(const std::string& option, const std::string& text) {
  const auto real = number<float>(text);
  if (real && std::isfinite(*real)) return *real;
  return refused(option, text, "allowed are decimal numbers of single precision");
}

Expected<std::int64_t> integerFromArgument(const std::string& option, const std::string& text) {
  if (const auto integer = number<std::int64_t>(text)) return *integer;
  return refused(option, text, "allowed are whole numbers of 64 bits");
}

Expected<bool> switchFromArgument(const std::string& option, const std::string& text) {
  for (const char* word : {"on", "yes", "true", "1"}) {
    if (text == word) return true;
  }
  for (const char* word : {"off", "no", "false", "0"}) {
    if (text == word) return false;
  }
  return refused(option, text, "allowed are on and off");
}

Expected<std::string> textFromArgument(const std::string& option, const std::string& text) {
  if (isUtf8(text)) return text;
  return refused(option, text, "allowed is UTF-8 text");
}

}  // namespace vantrel::cli
