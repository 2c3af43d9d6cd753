#include "platform/text/Calendar.h"

#include <unicode/gregocal.h>
#include <unicode/simpletz.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>

namespace vantrel {

namespace {

using std::chrono::days;
using std::chrono::month;
using std::chrono::sys_days;
using std::chrono::year;
using std::chrono::year_month_day;

constexpr std::int64_t kSecondsPerDay = 86400;
constexpr auto kReferenceDay = sys_days(year(2001) / 1 / 1);
/// The range of days for <chrono>, which supports neither the Julian calendar nor years of five
/// digits. ICU computes other days and takes longer than the rest of a call.
constexpr auto kFirstPlainDay = sys_days(year(1582) / 10 / 15);
constexpr auto kLastPlainDay = sys_days(year(9999) / 12 / 31);
/// The range of ICU's calendar, in seconds and in years.
constexpr double kLastSecond = 1.8e14;
constexpr std::int64_t kLastYear = 5'000'000;

bool isPlain(sys_days day) {
  return day >= kFirstPlainDay && day <= kLastPlainDay;
}

std::int64_t floorDivide(std::int64_t value, std::int64_t divisor) {
  return value / divisor - (value % divisor < 0 ? 1 : 0);
}

/// ICU's calendar. It has mutable state, so that each call creates its own.
class HybridCalendar {
 public:
  HybridCalendar() { calendar_.clear(); }

  std::int64_t firstDayOfMonth(std::int64_t civilYear, int civilMonth) {
    const auto clamped = std::clamp(civilYear, -kLastYear, kLastYear);
    calendar_.set(UCAL_EXTENDED_YEAR, static_cast<int32_t>(clamped));
    calendar_.set(UCAL_MONTH, civilMonth - 1);
    const double seconds = calendar_.getTime(status_) / U_MILLIS_PER_SECOND;
    const auto since1970 = static_cast<std::int64_t>(seconds) / kSecondsPerDay;
    return since1970 - kReferenceDay.time_since_epoch().count();
  }

  void setDay(sys_days day) {
    const auto since1970 = static_cast<double>(day.time_since_epoch().count());
    calendar_.setTime(since1970 * U_MILLIS_PER_DAY, status_);
  }
  int get(UCalendarDateFields field) { return calendar_.get(field, status_); }
  int daysInMonth() const {
    UErrorCode status = U_ZERO_ERROR;
    return calendar_.getActualMaximum(UCAL_DATE, status);
  }

 private:
  UErrorCode status_ = U_ZERO_ERROR;
  icu::GregorianCalendar calendar_{icu::SimpleTimeZone(0, icu::UnicodeString()),
                                   icu::Locale::getRoot(), status_};
};

/// Seconds since the reference date on the zone's clock, rounded down. 0 for NaN.
std::int64_t wallSeconds(Date date, const TimeZone& zone) {
  const double seconds = date.timeIntervalSinceReferenceDate();
  if (std::isnan(seconds)) return 0;
  const double whole = std::floor(std::clamp(seconds, -kLastSecond, kLastSecond));
  return static_cast<std::int64_t>(whole) + zone.secondsFromGMTForDate(date);
}

sys_days civilDay(Date date, const TimeZone& zone) {
  return kReferenceDay + days(floorDivide(wallSeconds(date, zone), kSecondsPerDay));
}

/// Days since the reference date. Months and days out of range carry over.
std::int64_t dayNumber(int civilYear, int civilMonth, int civilDay) {
  const std::int64_t months = std::int64_t{civilYear} * 12 + civilMonth - 1;
  const std::int64_t wholeYear = floorDivide(months, 12);
  const int monthOfYear = static_cast<int>(months - wholeYear * 12) + 1;
  const days further(std::int64_t{civilDay} - 1);
  if (wholeYear >= 1582 && wholeYear <= 9999) {
    const auto first = year(static_cast<int>(wholeYear)) / monthOfYear / 1;
    const auto day = sys_days(first) + further;
    if (isPlain(day)) return (day - kReferenceDay).count();
  }
  return HybridCalendar().firstDayOfMonth(wholeYear, monthOfYear) + further.count();
}

}  // namespace

Calendar Calendar::currentCalendar() {
  return {TimeZone::defaultTimeZone(), Locale::currentLocale()};
}

DateComponents Calendar::components(Date date) const {
  const auto wall = wallSeconds(date, zone_);
  const auto dayCount = floorDivide(wall, kSecondsPerDay);
  const auto day = kReferenceDay + days(dayCount);
  const int second = static_cast<int>(wall - dayCount * kSecondsPerDay);
  DateComponents result{.hour = second / 3600, .minute = second / 60 % 60, .second = second % 60};
  if (isPlain(day)) {
    const year_month_day civil(day);
    result.year = static_cast<int>(civil.year());
    result.month = static_cast<int>(static_cast<unsigned>(civil.month()));
    result.day = static_cast<int>(static_cast<unsigned>(civil.day()));
    return result;
  }
  HybridCalendar calendar;
  calendar.setDay(day);
  result.year = calendar.get(UCAL_EXTENDED_YEAR);
  result.month = calendar.get(UCAL_MONTH) + 1;
  result.day = calendar.get(UCAL_DATE);
  return result;
}

Date Calendar::dateFromComponents(const DateComponents& components) const {
  const auto day = dayNumber(components.year.value_or(1), components.month.value_or(1),
                             components.day.value_or(1));
  const auto second = std::int64_t{components.hour.value_or(0)} * 3600 +
                      std::int64_t{components.minute.value_or(0)} * 60 +
                      components.second.value_or(0);
  return zone_.dateForWallSeconds(static_cast<double>(day * kSecondsPerDay + second));
}

Date Calendar::dateByAddingDays(Date date, int days) const {
  // The wall time would move an instant in the second pass of a repeated hour to the first.
  if (days == 0) return date;
  const double seconds = date.timeIntervalSinceReferenceDate();
  const auto wall = wallSeconds(date, zone_) + days * kSecondsPerDay;
  return zone_.dateForWallSeconds(static_cast<double>(wall))
      .dateByAddingTimeInterval(seconds - std::floor(seconds));
}

int Calendar::weekday(Date date) const {
  return static_cast<int>(std::chrono::weekday(civilDay(date, zone_)).c_encoding()) + 1;
}

int Calendar::ordinalityOfDayInWeek(Date date) const {
  return (weekday(date) + 7 - locale_.firstWeekday()) % 7 + 1;
}

int Calendar::numberOfDaysInMonth(Date date) const {
  const auto day = civilDay(date, zone_);
  if (isPlain(day)) {
    const year_month_day civil(day);
    const auto last = civil.year() / civil.month() / std::chrono::last;
    return static_cast<int>(static_cast<unsigned>(last.day()));
  }
  HybridCalendar calendar;
  calendar.setDay(day);
  return calendar.daysInMonth();
}

}  // namespace vantrel
