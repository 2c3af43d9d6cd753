#include "platform/text/PosixZoneRule.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "base/Ascii.h"

namespace vantrel {

namespace {

constexpr int kHour = 3600;
/// The Gregorian calendar, weekdays included, repeats after 400 years.
constexpr std::int64_t kCalendarCycle = std::int64_t{146097} * 86400;

}  // namespace

/// Parses a rule from left to right. Each function returns false or `nullopt` on a mismatch.
class PosixZoneParser {
 public:
  explicit PosixZoneParser(std::string_view text) : rest_(text) {}

  bool readRule(PosixZoneRule& rule) {
    if (!readName(rule.standard_.abbreviation) || !readOffset(rule.standard_.offset)) return false;
    if (rest_.empty()) return true;
    PosixZoneRule::Daylight daylight;
    daylight.clock = {rule.standard_.offset + kHour, {}, true};
    if (!readName(daylight.clock.abbreviation)) return false;
    if (!rest_.empty() && rest_.front() != ',' && !readOffset(daylight.clock.offset)) return false;
    if (rest_.empty()) rest_ = ",M3.2.0,M11.1.0";
    if (!readChange(daylight.start) || !readChange(daylight.end) || !rest_.empty()) return false;
    rule.daylight_ = std::move(daylight);
    return true;
  }

 private:
  bool skip(char c) {
    if (!rest_.starts_with(c)) return false;
    rest_.remove_prefix(1);
    return true;
  }

  std::optional<int> number(int least, int most) {
    constexpr std::size_t kMostDigits = 3;
    int value = 0;
    std::size_t length = 0;
    for (; length < rest_.size() && length < kMostDigits && isAsciiDigit(rest_[length]); ++length) {
      value = value * 10 + (rest_[length] - '0');
    }
    rest_.remove_prefix(length);
    return length > 0 && value >= least && value <= most ? std::optional(value) : std::nullopt;
  }

  bool readName(std::string& name) {
    constexpr std::size_t kLeastLength = 3;
    const bool isQuoted = skip('<');
    std::size_t length = 0;
    while (length < rest_.size() &&
           (isAsciiLetter(rest_[length]) ||
            (isQuoted &&
             (isAsciiDigit(rest_[length]) || rest_[length] == '+' || rest_[length] == '-')))) {
      ++length;
    }
    name = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return length >= kLeastLength && (!isQuoted || skip('>'));
  }

  /// [+|-]hh[:mm[:ss]]
  std::optional<int> seconds(int mostHours) {
    constexpr int kMost = 59;
    const int sign = skip('-') ? -1 : 1;
    if (sign > 0) skip('+');
    const auto hours = number(0, mostHours);
    if (!hours) return std::nullopt;
    int total = *hours * kHour;
    for (int unit = 60; unit > 0 && skip(':'); unit /= 60) {
      const auto part = number(0, kMost);
      if (!part) return std::nullopt;
      total += *part * unit;
    }
    return sign * total;
  }

  /// POSIX counts offsets westward.
  bool readOffset(int& offset) {
    const auto west = seconds(24);
    if (west) offset = -*west;
    return west.has_value();
  }

  bool readChange(PosixZoneRule::Change& change) {
    constexpr int kTwoInTheMorning = 2 * kHour;
    if (!skip(',') || !readDay(change)) return false;
    const auto time = skip('/') ? seconds(167) : kTwoInTheMorning;
    if (time) change.seconds = *time;
    return time.has_value();
  }

  bool readDay(PosixZoneRule::Change& change) {
    using Form = PosixZoneRule::Change::Form;
    std::optional<int> day;
    if (skip('M')) {
      const auto month = number(1, 12);
      const auto week = skip('.') ? number(1, 5) : std::nullopt;
      day = skip('.') ? number(0, 6) : std::nullopt;
      if (!month || !week || !day) return false;
      change = {Form::kWeekdayOfMonth, *month, *week, *day, 0};
      return true;
    }
    change.form = skip('J') ? Form::kDayWithoutLeapDay : Form::kDayOfYear;
    day = change.form == Form::kDayOfYear ? number(0, 365) : number(1, 365);
    if (day) change.day = *day;
    return day.has_value();
  }

  std::string_view rest_;
};

std::optional<PosixZoneRule> PosixZoneRule::parsed(std::string_view text) {
  PosixZoneRule rule(0, {});
  if (!PosixZoneParser(text).readRule(rule)) return std::nullopt;
  if (!rule.daylight_) return rule;
  constexpr int kAnyYear = 2001;
  if (rule.startInYear(kAnyYear + 1) <= rule.endInYear(kAnyYear)) {
    // Daylight saving time ends when the next one starts, so that it is permanent, as in
    // "XXX3EDT4,0/0,J365/23".
    rule.standard_ = std::move(rule.daylight_->clock);
    rule.daylight_.reset();
  } else if (rule.startInYear(kAnyYear) == rule.endInYear(kAnyYear)) {
    rule.daylight_.reset();
  }
  return rule;
}

PosixZoneRule::PosixZoneRule(int offset, std::string abbreviation)
    : standard_{offset, std::move(abbreviation), false} {}

std::int64_t PosixZoneRule::Change::wallTimeInYear(int year) const {
  using namespace std::chrono;
  const auto y = std::chrono::year(year);
  sys_days date = sys_days(y / January / 1) + days(day);
  if (form == Form::kWeekdayOfMonth) {
    const auto m = std::chrono::month(static_cast<unsigned>(month));
    const auto weekday = std::chrono::weekday(static_cast<unsigned>(day));
    date = week == 5 ? sys_days(y / m / weekday[last])
                     : sys_days(y / m / weekday[static_cast<unsigned>(week)]);
  } else if (form == Form::kDayWithoutLeapDay) {
    constexpr int kLastOfFebruary = 59;
    date -= days(y.is_leap() && day > kLastOfFebruary ? 0 : 1);
  }
  return std::chrono::seconds(date.time_since_epoch()).count() + seconds;
}

std::int64_t PosixZoneRule::startInYear(int year) const {
  return daylight_->start.wallTimeInYear(year) - standard_.offset;
}

std::int64_t PosixZoneRule::endInYear(int year) const {
  return daylight_->end.wallTimeInYear(year) - daylight_->clock.offset;
}

ZonePeriod PosixZoneRule::periodAt(std::int64_t instant) const {
  using namespace std::chrono;
  ZonePeriod period;
  const Clock* clock = &standard_;
  if (daylight_) {
    const std::int64_t cycle = instant / kCalendarCycle - (instant < 0 ? 1 : 0);
    const std::int64_t inCycle = instant - cycle * kCalendarCycle;
    const auto day = floor<days>(sys_seconds(std::chrono::seconds(inCycle)));
    const int year = static_cast<int>(year_month_day(day).year());
    // Hours beyond 24 can move a change into the previous or next year.
    for (int y = year - 2; y <= year + 2; ++y) {
      for (const bool isStart : {true, false}) {
        const std::int64_t change =
            (isStart ? startInYear(y) : endInYear(y)) + cycle * kCalendarCycle;
        if (change > instant) {
          period.end = std::min(period.end, change);
        } else if (change >= period.begin) {
          period.begin = change;
          clock = isStart ? &daylight_->clock : &standard_;
        }
      }
    }
  }
  period.offset = clock->offset;
  period.isDaylight = clock->isDaylight;
  period.abbreviation = clock->abbreviation;
  return period;
}

}  // namespace vantrel
