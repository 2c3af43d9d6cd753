#include "exchange/CalendarZones.h"

#include <unicode/ucal.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

#include "cli/ExitCode.h"
#include "platform/TimeZone.h"

namespace vantrel::cli {

namespace {

/// Rules are walked year by year; those that embedded ones are asked for.
constexpr int kFirstYear = 1900;
constexpr int kLastYear = 2200;
constexpr int kMostOffset = 86399;

std::optional<TimeZone> systemZone(std::string_view name) {
  auto zone = TimeZone::timeZoneWithName(name);
  // "/freeassociation.sourceforge.net/Europe/Madrid": a slash in front tells a registry's name.
  if (!name.starts_with('/')) return zone;
  while (!zone && name.find('/') != std::string_view::npos) {
    name.remove_prefix(name.find('/') + 1);
    zone = TimeZone::timeZoneWithName(name);
  }
  return zone;
}

/// The usual zone of those that Windows calls by that name ("Romance Standard Time").
std::optional<TimeZone> windowsZone(const std::string& name) {
  std::array<UChar, 64> zone{};
  UErrorCode status = U_ZERO_ERROR;
  const auto windows = icu::UnicodeString::fromUTF8(name);
  const auto length = ucal_getTimeZoneIDForWindowsID(windows.getBuffer(), windows.length(), nullptr,
                                                     zone.data(), zone.size(), &status);
  if (U_FAILURE(status) || length <= 0) return std::nullopt;
  std::string id;
  icu::UnicodeString(zone.data(), length).toUTF8String(id);
  return TimeZone::timeZoneWithName(id);
}

std::string nameOfZone(icalcomponent* zone) {
  const auto* property = icalcomponent_get_first_property(zone, ICAL_TZID_PROPERTY);
  const char* name = property ? icalproperty_get_tzid(property) : nullptr;
  return name ? name : "";
}

template <std::size_t Size>
std::size_t countOf(const short (&list)[Size]) {
  return static_cast<std::size_t>(std::find(list, list + Size, ICAL_RECURRENCE_ARRAY_MAX) - list);
}

/// Whether a rule says a day of each year, or a week of days to choose from, as those of clocks do:
/// any other would be walked day by day, or second by second.
bool isClockRule(const icalrecurrencetype& rule) {
  constexpr std::size_t kWeek = 7;
  return rule.freq == ICAL_YEARLY_RECURRENCE && rule.interval == 1 && countOf(rule.by_month) <= 1 &&
         countOf(rule.by_day) <= countOf(rule.by_month) && countOf(rule.by_month_day) <= kWeek &&
         countOf(rule.by_second) + countOf(rule.by_minute) + countOf(rule.by_hour) == 0 &&
         countOf(rule.by_year_day) + countOf(rule.by_week_no) + countOf(rule.by_set_pos) == 0;
}

bool isOffset(icalcomponent* observance, icalproperty_kind kind) {
  auto* property = icalcomponent_get_first_property(observance, kind);
  if (!property) return false;
  const int seconds = icalvalue_get_utcoffset(icalproperty_get_value(property));
  return std::abs(seconds) <= kMostOffset;
}

bool isObservance(icalcomponent* observance) {
  if (!isOffset(observance, ICAL_TZOFFSETFROM_PROPERTY) ||
      !isOffset(observance, ICAL_TZOFFSETTO_PROPERTY) ||
      !icalcomponent_get_first_property(observance, ICAL_DTSTART_PROPERTY)) {
    return false;
  }
  auto* rule = icalcomponent_get_first_property(observance, ICAL_RRULE_PROPERTY);
  return !rule || (isClockRule(icalproperty_get_rrule(rule)) &&
                   !icalcomponent_get_next_property(observance, ICAL_RRULE_PROPERTY));
}

bool isZone(icalcomponent* zone) {
  auto* observance = icalcomponent_get_first_component(zone, ICAL_ANY_COMPONENT);
  if (!observance) return false;
  for (; observance; observance = icalcomponent_get_next_component(zone, ICAL_ANY_COMPONENT)) {
    if (!isObservance(observance)) return false;
  }
  return true;
}

/// The zone of the system that a calendar's own zone says it is.
std::optional<TimeZone> namesake(const std::string& name, icaltimezone* zone) {
  const char* location = icaltimezone_get_location(zone);
  auto known = location ? systemZone(location) : std::nullopt;
  return known ? known : windowsZone(name);
}

}  // namespace

CalendarZones::CalendarZones(icalcomponent* calendar) {
  for (auto* zone = icalcomponent_get_first_component(calendar, ICAL_VTIMEZONE_COMPONENT); zone;
       zone = icalcomponent_get_next_component(calendar, ICAL_VTIMEZONE_COMPONENT)) {
    components_.emplace(nameOfZone(zone), zone);
  }
}

Expected<icaltimezone*> CalendarZones::embeddedZone(const std::string& name,
                                                    icalcomponent* component) {
  auto& zone = zones_[name];
  if (!zone) {
    if (!isZone(component)) {
      return tl::make_unexpected(
          failure(kExitBadData, "VTIMEZONE \"" + name + "\"", "its rules make no sense"));
    }
    zone.reset(icaltimezone_new());
    icaltimezone_set_component(zone.get(), icalcomponent_new_clone(component));
  }
  return zone.get();
}

Expected<ZonedDate> CalendarZones::dateInZone(const std::string& name, const icaltimetype& wallTime,
                                              double wallSeconds) {
  auto known = systemZone(name);
  const auto component = components_.find(name);
  if (!known && component == components_.end()) known = windowsZone(name);
  if (known) return ZonedDate{known->dateForWallSeconds(wallSeconds), known->name()};
  if (component == components_.end()) {
    return tl::make_unexpected(failure(kExitBadData, "time zone \"" + name + "\"",
                                       "nobody knows it, and the file has no VTIMEZONE for it"));
  }
  const auto zone = embeddedZone(name, component->second);
  if (!zone) return tl::make_unexpected(zone.error());
  icaltimetype asked = wallTime;
  asked.is_date = 0;
  asked.year = std::clamp(asked.year, kFirstYear, kLastYear);
  const int offset = icaltimezone_get_utc_offset(*zone, &asked, nullptr);
  const Date date(wallSeconds - offset);
  const auto own = namesake(name, *zone);
  const bool isSame = own && own->secondsFromGMTForDate(date) == offset;
  return ZonedDate{date, isSame ? std::optional(own->name()) : std::nullopt};
}

}  // namespace vantrel::cli
