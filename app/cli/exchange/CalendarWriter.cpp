#include <libical/ical.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "base/Clock.h"
#include "base/Iso8601.h"
#include "base/PercentEncoding.h"
#include "cli/JsonText.h"
#include "cli/exchange/CalendarText.h"
#include "cli/exchange/ExchangeText.h"
#include "cli/exchange/PlanWriters.h"
#include "common/TerminalText.h"
#include "platform/text/Utf8.h"

namespace vantrel::cli {

namespace {

constexpr double kYear = 366 * 86400.0;
constexpr int kYearsAfter = 5;

icaltimetype timeOfWallSeconds(double wallSeconds, icaltimezone* zone = nullptr) {
  const double since1970 = std::floor(wallSeconds) + Date::kReferenceDateSince1970;
  return icaltime_from_timet_with_zone(static_cast<std::time_t>(since1970), 0, zone);
}

/// A transition of a zone's clock, without its date.
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

/// Adds an observance, or a date to the one that is equal.
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

/// Returns the wall time in `zone`, to the second; in UTC if `zone` is null.
icaltimetype calendarTime(Date date, const TimeZone* zone) {
  const double seconds = date.timeIntervalSinceReferenceDate();
  if (!zone) return timeOfWallSeconds(seconds, icaltimezone_get_utc_timezone());
  return timeOfWallSeconds(seconds + zone->secondsFromGMTForDate(date));
}

/// Returns a VTIMEZONE with all transitions from before `first` until some years after `last`.
/// They are listed one by one: rules that libical derives from them are wrong by an hour for months
/// in which a country changed its rules. The caller owns the result.
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
  const Date end = last.dateByAddingTimeInterval(kYearsAfter * kYear);
  for (auto next = zone.nextDaylightSavingTimeTransitionAfterDate(at); next && *next < end;
       next = zone.nextDaylightSavingTimeTransitionAfterDate(at)) {
    const int before = offset;
    at = *next;
    offset = zone.secondsFromGMTForDate(at);
    add(before);
  }
  return component;
}

/// A zone with the first and last date of the plans in it.
struct ZoneUse {
  TimeZone zone;
  Date first;
  Date last;
};
using ZoneUses = std::map<std::string, ZoneUse>;

/// Returns the plan's date if its year is from 1 to 9999 in UTC and in the plan's zone.
std::optional<Date> writableDate(const Planning& plan) {
  if (std::min(instantText(plan), localText(plan)) < "0001") return std::nullopt;
  // libical, which adds to the date to find a zone's last transition, fails beyond the year 9999.
  if (std::max(instantText(plan), localText(plan)) >= "9999-12") return std::nullopt;
  return dateFromIso8601String(instantText(plan));
}

ZoneUses zonesOf(PlanSource& plans) {
  ZoneUses uses;
  plans.forEach([&](const Planning& plan) {
    const auto date = writableDate(plan);
    const auto name = plan.timezone();
    if (!date || !name) return;
    if (const auto known = uses.find(*name); known != uses.end()) {
      known->second.first = std::min(known->second.first, *date);
      known->second.last = std::max(known->second.last, *date);
    } else if (const auto zone = TimeZone::timeZoneWithName(*name)) {
      uses.insert({*name, ZoneUse{*zone, *date, *date}});
    }
  });
  return uses;
}

void addStart(icalcomponent* event, Date date, const TimeZone* zone) {
  icalproperty* start = icalproperty_new_dtstart(calendarTime(date, zone));
  if (zone) icalproperty_add_parameter(start, icalparameter_new_tzid(zone->name().c_str()));
  icalcomponent_add_property(event, start);
}

void addPlace(icalcomponent* event, const LocationCoordinate2D& place) {
  icalcomponent_add_property(event, icalproperty_new_geo({place.latitude, place.longitude}));
  // Many calendars show only LOCATION on a map.
  const std::string text = decimalText(place.latitude) + ", " + decimalText(place.longitude);
  icalcomponent_add_property(event, icalproperty_new_location(text.c_str()));
}

/// Whether reading `written` returns `text`. True for invalid UTF-8, which no property can hold.
bool isKept(const std::string& text, const std::string& written) {
  return !isUtf8(text) || (!text.empty() && readCalendarText(written) == text);
}

/// Returns the values that the entry's standard properties cannot hold; an empty object if none.
Json valuesBeyond(const Planning& plan, bool isDated, const TimeZone* zone) {
  Json values = Json::object();
  const auto addText = [&](const char* key, const std::optional<std::string>& text) {
    if (text && !isKept(*text, *text)) values[key] = *text;
  };
  const auto identifier = plan.uniqueIdentifier();
  if (identifier && !isKept(*identifier, printable(*identifier))) {
    values["uniqueIdentifier"] = *identifier;
  }
  addText("name", plan.name());
  addText("notes", plan.notes());
  const auto zoneName = plan.timezone();
  if (zoneName && isUtf8(*zoneName) && (!zone || zone->name() != *zoneName)) {
    values["timezone"] = *zoneName;
  }
  const std::string instant = instantText(plan);
  if (!instant.empty() && (!isDated || instant.find('.') != std::string::npos)) {
    values["date"] = instant;
  }
  if (placeOfPlan(plan)) return values;
  const auto addDegrees = [&](const char* key, std::optional<double> degrees) {
    if (degrees && std::isfinite(*degrees)) values[key] = *degrees;
  };
  addDegrees("latitude", plan.latitude());
  addDegrees("longitude", plan.longitude());
  return values;
}

void addValues(icalcomponent* entry, const Json& values) {
  if (values.empty()) return;
  const std::string text = percentEncoded(values.dump(), kUrlUnreservedCharacterSet);
  icalproperty* property = icalproperty_new_x(text.c_str());
  icalproperty_set_x_name(property, std::string(kValuesProperty).c_str());
  icalcomponent_add_property(entry, property);
}

CalendarComponent entryOf(const Planning& plan, const ZoneUses& zones, const icaltimetype& now) {
  const auto date = writableDate(plan);
  const auto name = plan.name();
  const auto notes = plan.notes();
  ensureMemory(memoryForText(name.value_or("").size() + notes.value_or("").size()));
  CalendarComponent component(date ? icalcomponent_new_vevent() : icalcomponent_new_vtodo());
  icalcomponent* const entry = component.get();
  const std::string identifier =
      plan.uniqueIdentifier().value_or(plan.objectID().URIRepresentation());
  icalcomponent_add_property(entry, icalproperty_new_uid(printable(identifier).c_str()));
  icalcomponent_add_property(entry, icalproperty_new_dtstamp(now));
  const auto use = zones.find(plan.timezone().value_or(""));
  const TimeZone* zone = date && use != zones.end() ? &use->second.zone : nullptr;
  if (date) addStart(entry, *date, zone);
  if (name) {
    icalcomponent_add_property(entry, icalproperty_new_summary(calendarText(*name).c_str()));
  }
  if (notes) {
    icalcomponent_add_property(entry, icalproperty_new_description(calendarText(*notes).c_str()));
  }
  if (const auto place = placeOfPlan(plan)) addPlace(entry, *place);
  addValues(entry, valuesBeyond(plan, date.has_value(), zone));
  return component;
}

std::string textOf(const CalendarComponent& component) {
  const std::unique_ptr<char, decltype(&icalmemory_free_buffer)> text(
      icalcomponent_as_ical_string_r(component.get()), &icalmemory_free_buffer);
  return text.get();
}

}  // namespace

void writeCalendar(PlanSource& plans, const TextSink& print) {
  const CalendarComponent calendar(icalcomponent_new_vcalendar());
  icalcomponent_add_property(calendar.get(), icalproperty_new_version("2.0"));
  icalcomponent_add_property(calendar.get(),
                             icalproperty_new_prodid("-//Vantrel//Vantrel Today//EN"));
  // Writes component by component: for a million plans, libical would need gigabytes.
  constexpr std::string_view kEnd = "END:VCALENDAR\r\n";
  const std::string frame = textOf(calendar);
  print(std::string_view(frame).substr(0, frame.size() - kEnd.size()));
  const ZoneUses zones = zonesOf(plans);
  for (const auto& [name, use] : zones) {
    ensureMemory(kMemoryForZone);
    print(textOf(CalendarComponent(calendarZone(use.zone, use.first, use.last))));
  }
  const icaltimetype now = calendarTime(Clock::sharedClock().now(), nullptr);
  plans.forEach([&](const Planning& plan) { print(textOf(entryOf(plan, zones, now))); });
  print(kEnd);
}

}  // namespace vantrel::cli
