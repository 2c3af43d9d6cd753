#include "base/Iso8601.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "base/Ascii.h"

namespace vantrel {

namespace {

using std::chrono::day;
using std::chrono::days;
using std::chrono::month;
using std::chrono::sys_days;
using std::chrono::year;
using std::chrono::year_month_day;

constexpr double kSecondsPerDay = 86400;
constexpr auto kReferenceDay = sys_days(year(2001) / 1 / 1);

/// Reads a text field by field. After the first mismatch `ok()` is false.
class FieldReader {
 public:
  explicit FieldReader(std::string_view text) : rest_(text) {}

  int number(std::size_t digits) {
    int value = 0;
    require(rest_.size() >= digits);
    for (const char c : rest_.substr(0, digits)) {
      require(isAsciiDigit(c));
      value = value * 10 + (c - '0');
    }
    rest_.remove_prefix(std::min(digits, rest_.size()));
    return value;
  }

  bool skip(char c) {
    if (rest_.empty() || rest_.front() != c) return false;
    rest_.remove_prefix(1);
    return true;
  }
  void expect(char c) { require(skip(c)); }

  double fraction() {
    std::size_t digits = 0;
    while (digits < rest_.size() && isAsciiDigit(rest_[digits])) ++digits;
    require(digits > 0);
    const std::string text = "0." + std::string(rest_.substr(0, digits));
    rest_.remove_prefix(digits);
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
  }

  void require(bool condition) { ok_ = ok_ && condition; }
  bool ok() const { return ok_; }
  bool atEnd() const { return rest_.empty(); }

 private:
  std::string_view rest_;
  bool ok_ = true;
};

year_month_day dayOf(const WallTime& t) {
  return {year(t.year), month(static_cast<unsigned>(t.month)), day(static_cast<unsigned>(t.day))};
}

bool isValid(const WallTime& t) {
  return dayOf(t).ok() && t.hour < 24 && t.minute < 60 && t.second < 60;
}

WallTime readDay(FieldReader& reader) {
  WallTime wall;
  const bool isBeforeYearZero = reader.skip('-');
  wall.year = (isBeforeYearZero ? -1 : 1) * reader.number(4);
  reader.expect('-');
  wall.month = reader.number(2);
  reader.expect('-');
  wall.day = reader.number(2);
  return wall;
}

void readTime(FieldReader& reader, WallTime& wall) {
  wall.hour = reader.number(2);
  reader.expect(':');
  wall.minute = reader.number(2);
  if (reader.skip(':')) wall.second = reader.number(2);
}

double secondsSinceReference(const WallTime& t) {
  const auto count = (sys_days(dayOf(t)) - kReferenceDay).count();
  return static_cast<double>(count) * kSecondsPerDay + t.hour * 3600.0 + t.minute * 60.0 + t.second;
}

int readOffset(FieldReader& reader) {
  if (reader.skip('Z')) return 0;
  const bool negative = reader.skip('-');
  if (!negative) reader.expect('+');
  const int hours = reader.number(2);
  int minutes = 0;
  if (!reader.atEnd()) {
    reader.skip(':');
    minutes = reader.number(2);
  }
  reader.require(hours <= 23 && minutes <= 59);
  return (negative ? -1 : 1) * (hours * 3600 + minutes * 60);
}

/// Returns ".5" for 0.5: the fewest digits of `exact - whole` that read back as `exact`.
std::string shortestFraction(double whole, double exact) {
  std::array<char, 32> text{};
  for (int digits = 1; digits <= 17; ++digits) {
    std::snprintf(text.data(), text.size(), "%.*f", digits, exact - whole);
    double value = 0;
    const std::string_view view = text.data();
    std::from_chars(view.data(), view.data() + view.size(), value);
    if (value < 1 && whole + value == exact) return std::string(view.substr(1));
  }
  return {};
}

}  // namespace

std::string iso8601String(Date date, int offsetSeconds) {
  const double exact = date.timeIntervalSinceReferenceDate();
  double whole = std::floor(exact);
  // `exact` is so close below a second that no fraction is closer.
  if (exact - whole >= 1) ++whole;
  if (!hasIso8601String(Date(whole + offsetSeconds))) return {};
  const auto local = static_cast<std::int64_t>(whole) + offsetSeconds;
  const auto dayCount = std::chrono::floor<days>(std::chrono::seconds(local));
  const year_month_day civil{kReferenceDay + dayCount};
  const int civilYear = static_cast<int>(civil.year());
  const auto secondOfDay = static_cast<int>(local - std::chrono::seconds(dayCount).count());
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%s%04d-%02u-%02uT%02d:%02d:%02d",
                civilYear < 0 ? "-" : "", std::abs(civilYear), static_cast<unsigned>(civil.month()),
                static_cast<unsigned>(civil.day()), secondOfDay / 3600, secondOfDay / 60 % 60,
                secondOfDay % 60);
  std::string result = text.data();
  if (exact != whole) result += shortestFraction(whole, exact);
  if (offsetSeconds == 0) return result + "Z";
  const int magnitude = std::abs(offsetSeconds);
  std::snprintf(text.data(), text.size(), "%c%02d:%02d", offsetSeconds < 0 ? '-' : '+',
                magnitude / 3600, magnitude / 60 % 60);
  return result + text.data();
}

bool hasIso8601String(Date date) {
  constexpr auto kFirst = (sys_days(year(-9999) / 1 / 1) - kReferenceDay).count();
  constexpr auto kEnd = (sys_days(year(10000) / 1 / 1) - kReferenceDay).count();
  const double seconds = date.timeIntervalSinceReferenceDate();
  return seconds >= static_cast<double>(kFirst) * kSecondsPerDay &&
         seconds < static_cast<double>(kEnd) * kSecondsPerDay;
}

std::optional<Date> dateFromIso8601String(std::string_view text) {
  FieldReader reader(text);
  WallTime wall = readDay(reader);
  reader.expect('T');
  readTime(reader, wall);
  const double fraction = reader.skip('.') ? reader.fraction() : 0;
  const int offset = readOffset(reader);
  if (!reader.ok() || !reader.atEnd() || !isValid(wall)) return std::nullopt;
  return Date(secondsSinceReference(wall) - offset + fraction);
}

std::optional<WallTime> wallTimeFromIso8601String(std::string_view text) {
  FieldReader reader(text);
  WallTime wall = readDay(reader);
  if (!reader.atEnd()) {
    if (!reader.skip('T')) reader.expect(' ');
    readTime(reader, wall);
  }
  if (!reader.ok() || !reader.atEnd() || !isValid(wall)) return std::nullopt;
  return wall;
}

}  // namespace vantrel
