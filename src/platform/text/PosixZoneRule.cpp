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

/// Parses a rule from left to right. After the first mismatch `isValid_` is false.
class PosixZoneParser {
 public:
  explicit PosixZoneParser(std::string_view text) : rest_(text) {}

  bool readRule(PosixZoneRule& rule) {
    rule.standard_.abbreviation = name();
    rule.standard_.offset = offset();
    if (rest_.empty()) return isValid_;
    PosixZoneRule::Daylight daylight;
    daylight.clock = {rule.standard_.offset + kHour, name(), true};
    if (!rest_.empty() && rest_.front() != ',') daylight.clock.offset = offset();
    if (rest_.empty()) rest_ = ",M3.2.0,M11.1.0";
    daylight.start = change();
    daylight.end = change();
    rule.daylight_ = std::move(daylight);
    return isValid_ && rest_.empty();
  }

 private:
  bool skip(char c) {
    if (!rest_.starts_with(c)) return false;
    rest_.remove_prefix(1);
    return true;
  }
  void expect(char c) { isValid_ = skip(c) && isValid_; }

  int number(int least, int most) {
    constexpr std::size_t kMostDigits = 3;
    int value = 0;
    std::size_t length = 0;
    for (; length < rest_.size() && length < kMostDigits && isAsciiDigit(rest_[length]); ++length) {
      value = value * 10 + (rest_[length] - '0');
    }
    rest_.remove_prefix(length);
    isValid_ = isValid_ && length > 0 && value >= least && value <= most;
    return value;
  }

  std::string name() {
    constexpr std::size_t kLeastLength = 3;
    const bool isQuoted = skip('<');
    const auto end = std::find_if_not(rest_.begin(), rest_.end(), [isQuoted](char c) {
      return isAsciiLetter(c) || (isQuoted && (isAsciiDigit(c) || c == '+' || c == '-'));
    });
    std::string result(rest_.begin(), end);
    rest_.remove_prefix(result.size());
    if (isQuoted) expect('>');
    isValid_ = isValid_ && result.size() >= kLeastLength;
    return result;
  }

  /// [+|-]hh[:mm[:ss]]
  int seconds(int mostHours) {
    const int sign = skip('-') ? -1 : 1;
    if (sign > 0) skip('+');
    int total = number(0, mostHours) * kHour;
    for (int unit = 60; unit > 0 && skip(':'); unit /= 60) total += number(0, 59) * unit;
    return sign * total;
  }

  /// POSIX counts offsets westward.
  int offset() { return -seconds(24); }

  PosixZoneRule::Change change() {
    using Form = PosixZoneRule::Change::Form;
    constexpr int kTwoInTheMorning = 2 * kHour;
    PosixZoneRule::Change result;
    expect(',');
    if (skip('M')) {
      result.month = number(1, 12);
      expect('.');
      result.week = number(1, 5);
      expect('.');
      result.day = number(0, 6);
    } else {
      result.form = skip('J') ? Form::kDayWithoutLeapDay : Form::kDayOfYear;
      result.day = number(result.form == Form::kDayOfYear ? 0 : 1, 365);
    }
    result.seconds = skip('/') ? seconds(167) : kTwoInTheMorning;
    return result;
  }

  std::string_view rest_;
  bool isValid_ = true;
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
