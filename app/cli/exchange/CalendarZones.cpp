#include "cli/exchange/CalendarZones.h"
#include "cli/exchange/CalendarText.h"

#include <unicode/ucal.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "cli/exchange/PlanDraft.h"

namespace vantrel::cli {

namespace {

/// libical expands rules year by year; dates outside use the rules of the nearest of these years.
constexpr int kFirstYear = 1900;
constexpr int kLastYear = 2200;
constexpr int kMostOffset = 86399;

std::optional<TimeZone> systemZone(std::string_view name) {
  auto zone = TimeZone::timeZoneWithName(name);
  // "/freeassociation.sourceforge.net/Europe/Madrid" begins with the name of a registry.
  if (!name.starts_with('/')) return zone;
  while (!zone && name.find('/') != std::string_view::npos) {
    name.remove_prefix(name.find('/') + 1);
    zone = TimeZone::timeZoneWithName(name);
  }
  return zone;
}

/// Returns the default zone for a Windows name ("Romance Standard Time").
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

/// Whether the rule is a day of each year, or a weekday within seven days: libical would expand any
/// other day by day, or second by second.
bool isClockRule(const icalrecurrencetype& rule) {
  constexpr std::size_t kWeek = 7;
  return rule.freq == ICAL_YEARLY_RECURRENCE && rule.interval == 1 && !rule.rscale &&
         countOf(rule.by_month) <= 1 && countOf(rule.by_day) <= countOf(rule.by_month) &&
         countOf(rule.by_month_day) <= kWeek &&
         countOf(rule.by_second) + countOf(rule.by_minute) + countOf(rule.by_hour) == 0 &&
         countOf(rule.by_year_day) + countOf(rule.by_week_no) + countOf(rule.by_set_pos) == 0;
}

/// Whether the day of a clock rule exists in some year; libical would search forever otherwise. A
/// rule without a day uses that of `start`.
bool isExistingDay(const icalrecurrencetype& rule, const icaltimetype& start) {
  constexpr std::array kMonthLengths = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  constexpr int kMostWeeks = 5;
  const int month = countOf(rule.by_month) > 0 ? rule.by_month[0] : 1;
  const std::size_t days = countOf(rule.by_month_day);
  const bool hasWeekday = countOf(rule.by_day) > 0;
  const int week = hasWeekday ? icalrecurrencetype_day_position(rule.by_day[0]) : 0;
  if (month < 1 || month > 12 || std::abs(week) > (days > 0 ? 0 : kMostWeeks)) return false;
  const auto isInMonth = [&](int day) {
    return std::abs(day) <= kMonthLengths[static_cast<std::size_t>(month) - 1];
  };
  if (days > 0) return std::any_of(rule.by_month_day, rule.by_month_day + days, isInMonth);
  return hasWeekday || isInMonth(start.day);
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
      icalcomponent_count_properties(observance, ICAL_DTSTART_PROPERTY) != 1 ||
      icalcomponent_count_properties(observance, ICAL_RRULE_PROPERTY) > 1) {
    return false;
  }
  auto* property = icalcomponent_get_first_property(observance, ICAL_RRULE_PROPERTY);
  if (!property) return true;
  const icalrecurrencetype rule = icalproperty_get_rrule(property);
  auto* start = icalcomponent_get_first_property(observance, ICAL_DTSTART_PROPERTY);
  return isClockRule(rule) && isExistingDay(rule, icalproperty_get_dtstart(start));
}

bool isZone(icalcomponent* zone) {
  auto* observance = icalcomponent_get_first_component(zone, ICAL_ANY_COMPONENT);
  if (!observance) return false;
  for (; observance; observance = icalcomponent_get_next_component(zone, ICAL_ANY_COMPONENT)) {
    if (!isObservance(observance)) return false;
  }
  return true;
}

}  // namespace

CalendarZones::CalendarZones(icalcomponent* calendar) {
  for (auto* zone = icalcomponent_get_first_component(calendar, ICAL_VTIMEZONE_COMPONENT); zone;
       zone = icalcomponent_get_next_component(calendar, ICAL_VTIMEZONE_COMPONENT)) {
    components_.emplace(nameOfZone(zone), zone);
  }
}

Expected<CalendarZones::Zone> CalendarZones::zoneNamed(const std::string& name) const {
  const auto component = components_.find(name);
  Zone zone{systemZone(name), nullptr};
  if (component == components_.end()) {
    if (!zone.system) zone.system = windowsZone(name);
    if (zone.system) return zone;
    return invalidData("time zone \"" + name + "\"",
                       "unknown, and the file has no VTIMEZONE for it");
  }
  if (zone.system) return zone;
  if (!isZone(component->second)) {
    return invalidData("VTIMEZONE \"" + name + "\"", "invalid rules");
  }
  ensureMemory(kMemoryForZone);
  zone.embedded.reset(icaltimezone_new());
  icaltimezone_set_component(zone.embedded.get(), icalcomponent_new_clone(component->second));
  // Expands all years at once: libical starts from the first year at each request for a later one.
  icaltimetype last = icaltime_null_time();
  last.year = kLastYear;
  last.month = last.day = 1;
  icaltimezone_get_utc_offset(zone.embedded.get(), &last, nullptr);
  const char* location = icaltimezone_get_location(zone.embedded.get());
  if (location) zone.system = systemZone(location);
  if (!zone.system) zone.system = windowsZone(name);
  return zone;
}

Expected<ZonedDate> CalendarZones::dateInZone(const std::string& name, const icaltimetype& wallTime,
                                              double wallSeconds) {
  auto known = zones_.find(name);
  if (known == zones_.end()) {
    auto zone = zoneNamed(name);
    if (!zone) return tl::unexpected(zone.error());
    known = zones_.emplace(name, std::move(*zone)).first;
  }
  const auto& [system, embedded] = known->second;
  if (!embedded) return ZonedDate{system->dateForWallSeconds(wallSeconds), system->name()};
  icaltimetype asked = wallTime;
  asked.is_date = 0;
  asked.year = std::clamp(asked.year, kFirstYear, kLastYear);
  const int offset = icaltimezone_get_utc_offset(embedded.get(), &asked, nullptr);
  const Date date(wallSeconds - offset);
  const bool isSame = system && system->secondsFromGMTForDate(date) == offset;
  return ZonedDate{date, isSame ? std::optional(system->name()) : std::nullopt};
}

}  // namespace vantrel::cli
