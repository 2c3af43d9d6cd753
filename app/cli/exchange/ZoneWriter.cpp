#include "cli/exchange/ZoneWriter.h"

#include <cmath>
#include <ctime>
#include <map>
#include <string>
#include <tuple>

namespace vantrel::cli {

namespace {

constexpr double kYear = 366 * 86400.0;
constexpr int kYearsBehind = 5;

icaltimetype timeOfWallSeconds(double wallSeconds, icaltimezone* zone = nullptr) {
  const double since1970 = std::floor(wallSeconds) + Date::kReferenceDateSince1970;
  return icaltime_from_timet_with_zone(static_cast<std::time_t>(since1970), 0, zone);
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
  const double seconds = date.timeIntervalSinceReferenceDate();
  if (!zone) return timeOfWallSeconds(seconds, icaltimezone_get_utc_timezone());
  return timeOfWallSeconds(seconds + zone->secondsFromGMTForDate(date));
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
