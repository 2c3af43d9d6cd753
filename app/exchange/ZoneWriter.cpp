#include "exchange/ZoneWriter.h"

#include <chrono>
#include <cmath>
#include <map>
#include <string>
#include <tuple>

namespace vantrel::cli {

namespace {

constexpr double kYear = 366 * 86400.0;
constexpr int kYearsBehind = 5;

icaltimetype timeOfWallSeconds(double wallSeconds) {
  using std::chrono::days;
  using std::chrono::seconds;
  using std::chrono::sys_days;
  using std::chrono::year;
  const seconds whole(static_cast<std::int64_t>(std::floor(wallSeconds)));
  const auto count = std::chrono::floor<days>(whole);
  const std::chrono::year_month_day civil(sys_days(year(2001) / 1 / 1) + count);
  const auto rest = static_cast<int>((whole - count).count());
  icaltimetype time = icaltime_null_time();
  time.year = static_cast<int>(civil.year());
  time.month = static_cast<int>(static_cast<unsigned>(civil.month()));
  time.day = static_cast<int>(static_cast<unsigned>(civil.day()));
  time.hour = rest / 3600;
  time.minute = rest / 60 % 60;
  time.second = rest % 60;
  return time;
}

/// A clock's change: from which offset to which, under which name.
struct Change {
  bool isDaylight;
  int from;
  int to;
  std::string name;
  friend bool operator<(const Change& a, const Change& b) {
    return std::tie(a.isDaylight, a.from, a.to, a.name) <
           std::tie(b.isDaylight, b.from, b.to, b.name);
  }
};

icalcomponent* observanceOf(const Change& change, const icaltimetype& start) {
  icalcomponent* observance =
      change.isDaylight ? icalcomponent_new_xdaylight() : icalcomponent_new_xstandard();
  icalcomponent_add_property(observance, icalproperty_new_tzname(change.name.c_str()));
  icalcomponent_add_property(observance, icalproperty_new_tzoffsetfrom(change.from));
  icalcomponent_add_property(observance, icalproperty_new_tzoffsetto(change.to));
  icalcomponent_add_property(observance, icalproperty_new_dtstart(start));
  return observance;
}

/// One more observance, or one more date of one that is there.
void addChange(icalcomponent* zone, std::map<Change, icalcomponent*>& observances,
               const Change& change, const icaltimetype& start) {
  auto& observance = observances[change];
  if (observance) {
    icalcomponent_add_property(observance,
                               icalproperty_new_rdate({start, icalperiodtype_null_period()}));
  } else {
    observance = observanceOf(change, start);
    icalcomponent_add_component(zone, observance);
  }
}

}  // namespace

icaltimetype calendarTime(Date date, const TimeZone* zone) {
  const double offset = zone ? zone->secondsFromGMTForDate(date) : 0;
  icaltimetype time = timeOfWallSeconds(date.timeIntervalSinceReferenceDate() + offset);
  if (!zone) time.zone = icaltimezone_get_utc_timezone();
  return time;
}

icalcomponent* calendarZone(const TimeZone& zone, Date first, Date last) {
  icalcomponent* component = icalcomponent_new_vtimezone();
  icalcomponent_add_property(component, icalproperty_new_tzid(zone.name().c_str()));
  std::map<Change, icalcomponent*> observances;
  Date at = first.dateByAddingTimeInterval(-kYear);
  int offset = zone.secondsFromGMTForDate(at);
  const auto add = [&](int from) {
    addChange(component, observances,
              {zone.isDaylightSavingTimeForDate(at), from, offset, zone.abbreviationForDate(at)},
              timeOfWallSeconds(at.timeIntervalSinceReferenceDate() + from));
  };
  add(offset);
  const Date end = last.dateByAddingTimeInterval(kYearsBehind * kYear);
  for (auto next = zone.nextDaylightSavingTimeTransitionAfterDate(at); next && *next < end;
       next = zone.nextDaylightSavingTimeTransitionAfterDate(at)) {
    const int before = offset;
    at = *next;
    offset = zone.secondsFromGMTForDate(at);
    add(before);
  }
  return component;
}

}  // namespace vantrel::cli
