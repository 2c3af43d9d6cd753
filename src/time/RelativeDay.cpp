#include "time/RelativeDay.h"

#include <algorithm>
#include <cmath>

#include "platform/text/DateFormatter.h"
#include "platform/text/RelativeDateFormatter.h"

namespace vantrel {

namespace {

constexpr double kSecondsPerDay = 86400;
constexpr int kDaysPerWeek = 7;
/// Longer spans are told in the next larger unit.
constexpr int kMostDaysInWeeks = 60;
constexpr int kMostDaysInMonths = 730;
constexpr double kDaysPerMonth = 365.2425 / 12;
constexpr double kDaysPerYear = 365.2425;
constexpr std::int64_t kMostDays = 3'000'000;

std::int64_t dayNumber(Date date, const TimeZone& zone) {
  const double wall = date.timeIntervalSinceReferenceDate() + zone.secondsFromGMTForDate(date);
  return static_cast<std::int64_t>(std::floor(wall / kSecondsPerDay));
}

}  // namespace

std::int64_t daysUntil(Date date, const TimeZone& zone, Date now) {
  return dayNumber(date, zone) - dayNumber(now, zone);
}

std::string relativeDayText(Date date, const TimeZone& zone, Date now, bool weekdays) {
  using Unit = RelativeDateFormatter::Unit;
  static const RelativeDateFormatter words{Locale::currentLocale()};
  const int days = static_cast<int>(std::clamp(daysUntil(date, zone, now), -kMostDays, kMostDays));
  const int size = std::abs(days);
  if (size <= 1 || (size < kDaysPerWeek && (days < 0 || !weekdays))) return words.day(days);
  if (size < kDaysPerWeek) {
    DateFormatter weekday;
    weekday.setLocale(Locale::currentLocale());
    weekday.setTimeZone(zone);
    weekday.setDateFormat("EEEE");
    return weekday.stringFromDate(date);
  }
  const auto rounded = [&](double unit) { return static_cast<int>(std::lround(days / unit)); };
  if (size < kMostDaysInWeeks) return words.relative(rounded(kDaysPerWeek), Unit::kWeek);
  if (size < kMostDaysInMonths) return words.relative(rounded(kDaysPerMonth), Unit::kMonth);
  return words.relative(rounded(kDaysPerYear), Unit::kYear);
}

}  // namespace vantrel
