#include "cli/exchange/CalendarWriter.h"

#include <libical/ical.h>

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/Clock.h"
#include "cli/exchange/CalendarText.h"
#include "cli/exchange/ExchangeText.h"
#include "cli/exchange/ZoneWriter.h"

namespace vantrel::cli {

namespace {

/// A zone's name to its rules and the dates of the plans in it.
struct ZoneUse {
  TimeZone zone;
  Date first;
  Date last;
};
using ZoneUses = std::map<std::string, ZoneUse>;

/// A date that the format can write: of the years from 1 to 9999, in the plan's zone too.
std::optional<Date> writableDate(const Planning& plan) {
  if (std::min(instantText(plan), localText(plan)) < "0001") return std::nullopt;
  return plan.date();
}

ZoneUses zonesOf(const Plans& plans) {
  ZoneUses uses;
  for (const auto& plan : plans) {
    const auto date = writableDate(*plan);
    const auto name = plan->timezone();
    if (!date || !name) continue;
    if (const auto known = uses.find(*name); known != uses.end()) {
      known->second.first = std::min(known->second.first, *date);
      known->second.last = std::max(known->second.last, *date);
    } else if (const auto zone = TimeZone::timeZoneWithName(*name)) {
      uses.insert({*name, ZoneUse{*zone, *date, *date}});
    }
  }
  return uses;
}

void addStart(icalcomponent* event, Date date, const TimeZone* zone) {
  icalproperty* start = icalproperty_new_dtstart(calendarTime(date, zone));
  if (zone) icalproperty_add_parameter(start, icalparameter_new_tzid(zone->name().c_str()));
  icalcomponent_add_property(event, start);
}

void addPlace(icalcomponent* event, const LocationCoordinate2D& place) {
  icalcomponent_add_property(event, icalproperty_new_geo({place.latitude, place.longitude}));
  // Many calendars show only this on a map.
  const std::string text = decimalText(place.latitude) + ", " + decimalText(place.longitude);
  icalcomponent_add_property(event, icalproperty_new_location(text.c_str()));
}

CalendarComponent entryOf(const Planning& plan, const ZoneUses& zones, const icaltimetype& now) {
  const auto date = writableDate(plan);
  const auto name = plan.name();
  const auto notes = plan.notes();
  ensureMemory(memoryForText(name.value_or("").size() + notes.value_or("").size()));
  CalendarComponent made(date ? icalcomponent_new_vevent() : icalcomponent_new_vtodo());
  icalcomponent* const entry = made.get();
  const std::string identifier =
      plan.uniqueIdentifier().value_or(plan.objectID().URIRepresentation());
  icalcomponent_add_property(entry, icalproperty_new_uid(calendarText(identifier).c_str()));
  icalcomponent_add_property(entry, icalproperty_new_dtstamp(now));
  if (date) {
    const auto use = zones.find(plan.timezone().value_or(""));
    addStart(entry, *date, use == zones.end() ? nullptr : &use->second.zone);
  }
  if (name) {
    icalcomponent_add_property(entry, icalproperty_new_summary(calendarText(*name).c_str()));
  }
  if (notes) {
    icalcomponent_add_property(entry, icalproperty_new_description(calendarText(*notes).c_str()));
  }
  if (const auto place = placeOfPlan(plan)) addPlace(entry, *place);
  return made;
}

std::string textOf(const CalendarComponent& component) {
  const std::unique_ptr<char, decltype(&icalmemory_free_buffer)> text(
      icalcomponent_as_ical_string_r(component.get()), &icalmemory_free_buffer);
  return text.get();
}

}  // namespace

void writeCalendar(const Plans& plans, const TextSink& print) {
  const CalendarComponent calendar(icalcomponent_new_vcalendar());
  icalcomponent_add_property(calendar.get(), icalproperty_new_version("2.0"));
  icalcomponent_add_property(calendar.get(),
                             icalproperty_new_prodid("-//Vantrel//Vantrel Today//EN"));
  // Component by component: of a million plans, libical would need gigabytes.
  constexpr std::string_view kEnd = "END:VCALENDAR\r\n";
  const std::string frame = textOf(calendar);
  print(std::string_view(frame).substr(0, frame.size() - kEnd.size()));
  const ZoneUses zones = zonesOf(plans);
  for (const auto& [name, use] : zones) {
    ensureMemory(kMemoryForZone);
    print(textOf(CalendarComponent(calendarZone(use.zone, use.first, use.last))));
  }
  const icaltimetype now = calendarTime(Clock::sharedClock().now(), nullptr);
  for (const auto& plan : plans) print(textOf(entryOf(*plan, zones, now)));
  print(kEnd);
}

}  // namespace vantrel::cli
