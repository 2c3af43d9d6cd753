#include "cli/exchange/CalendarWriter.h"

#include <libical/ical.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/Clock.h"
#include "base/Iso8601.h"
#include "base/PercentEncoding.h"
#include "cli/JsonText.h"
#include "cli/exchange/CalendarText.h"
#include "cli/exchange/ExchangeText.h"
#include "cli/exchange/ZoneWriter.h"
#include "common/TerminalText.h"
#include "platform/text/Utf8.h"

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
  // The library cannot count past the year 9999, which it does to place a zone's last change.
  if (std::max(instantText(plan), localText(plan)) >= "9999-12") return std::nullopt;
  return dateFromIso8601String(instantText(plan));
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

/// Whether the text comes back as it is; what is no UTF-8 never does.
bool isKept(const std::string& text, const std::string& written) {
  return !isUtf8(text) || (!text.empty() && readCalendarText(written) == text);
}

/// What the entry's properties cannot hold; an empty object if they hold all.
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
  CalendarComponent made(date ? icalcomponent_new_vevent() : icalcomponent_new_vtodo());
  icalcomponent* const entry = made.get();
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
