#include "cli/exchange/CalendarReader.h"

#include <libical/ical.h>

#include <chrono>
#include <cmath>
#include <string>
#include <utility>

#include "base/PercentEncoding.h"
#include "cli/Arguments.h"
#include "cli/exchange/CalendarText.h"
#include "cli/exchange/CalendarZones.h"
#include "cli/exchange/ExchangeText.h"
#include "cli/exchange/JsonReader.h"
#include "common/TerminalText.h"

namespace vantrel::cli {

namespace {

constexpr std::size_t kLongestNameShown = 60;

struct Place {
  double latitude = 0;
  double longitude = 0;
};

std::optional<std::string> textOf(icalcomponent* entry, icalproperty_kind kind) {
  auto* property = icalcomponent_get_first_property(entry, kind);
  const char* text = property ? icalvalue_get_text(icalproperty_get_value(property)) : nullptr;
  return text ? std::optional<std::string>(text) : std::nullopt;
}

bool has(icalcomponent* entry, icalproperty_kind kind) {
  return icalcomponent_get_first_property(entry, kind) != nullptr;
}

std::optional<std::string> extraTextOf(icalcomponent* entry, std::string_view kind) {
  for (auto* property = icalcomponent_get_first_property(entry, ICAL_X_PROPERTY); property;
       property = icalcomponent_get_next_property(entry, ICAL_X_PROPERTY)) {
    const char* name = icalproperty_get_x_name(property);
    const char* text = icalproperty_get_x(property);
    if (name && text && name == kind) return text;
  }
  return std::nullopt;
}

/// Parses two numbers separated by `divider` and spaces.
std::optional<Place> placeFromText(std::string_view text, char divider) {
  const auto at = text.find(divider);
  if (at == std::string_view::npos) return std::nullopt;
  const auto trimmed = [](std::string_view word) {
    while (word.starts_with(' ')) word.remove_prefix(1);
    while (word.ends_with(' ')) word.remove_suffix(1);
    return word;
  };
  const auto latitude = finiteNumber(trimmed(text.substr(0, at)));
  const auto longitude = finiteNumber(trimmed(text.substr(at + 1)));
  if (!latitude || !longitude) return std::nullopt;
  return Place{*latitude, *longitude};
}

bool isSamePlace(const Place& a, const Place& b) {
  return std::fabs(a.latitude - b.latitude) <= kPlacePrecision &&
         std::fabs(a.longitude - b.longitude) <= kPlacePrecision;
}

/// Returns seconds since 2001-01-01 00:00; `nullopt` for an invalid day or time.
std::optional<double> wallSecondsOf(const icaltimetype& time) {
  const std::chrono::year_month_day day(std::chrono::year(time.year),
                                        std::chrono::month(static_cast<unsigned>(time.month)),
                                        std::chrono::day(static_cast<unsigned>(time.day)));
  const bool isTime = time.hour >= 0 && time.hour < 24 && time.minute >= 0 && time.minute < 60 &&
                      time.second >= 0 && time.second <= 60;
  if (time.year < 1 || !day.ok() || !isTime) return std::nullopt;
  return secondsOfWallTime({time.year, time.month, time.day, time.hour, time.minute, time.second});
}

/// The numbers of entries that were read incompletely or left out.
struct Counts {
  std::size_t wholeDays = 0;
  std::size_t repeating = 0;
  std::size_t changedTimes = 0;
  std::size_t cancelled = 0;
};

std::vector<std::string> notesOf(const Counts& counts) {
  std::vector<std::string> notes;
  addNote(notes, counts.wholeDays, "1 all-day event: planned at midnight",
          " all-day events: planned at midnight");
  addNote(notes, counts.repeating, "1 repeating event: only its first occurrence is planned",
          " repeating events: only their first occurrences are planned");
  addNote(notes, counts.changedTimes, "1 changed occurrence of a repeating event was left out",
          " changed occurrences of repeating events were left out");
  addNote(notes, counts.cancelled, "1 cancelled event was left out",
          " cancelled events were left out");
  return notes;
}

/// Reads one event or to-do.
class EntryReader {
 public:
  EntryReader(icalcomponent* entry, std::size_t number, CalendarZones& zones, Counts& counts)
      : entry_(entry), zones_(zones), counts_(counts) {
    draft_.isRounded = true;
    draft_.where = "event " + std::to_string(number);
  }

  Expected<PlanDraft> read() {
    if (const auto name = textOf(entry_, ICAL_SUMMARY_PROPERTY)) {
      draft_.values["name"] = *name;
      if (!name->empty() && name->size() <= kLongestNameShown) {
        draft_.where += " \"" + *name + "\"";
      }
    }
    readNotes();
    return readIdentifier()
        .and_then([&] { return readDate(); })
        .and_then([&] { return readPlace(); })
        .and_then([&] { return readValues(); })
        .map([&] { return std::move(draft_); });
  }

 private:
  Expected<void> readIdentifier() {
    const auto uid = textOf(entry_, ICAL_UID_PROPERTY);
    if (!uid || uid->empty()) return {};
    draft_.identifier = uid;
    return checkIdentifier(draft_.where + ": UID", *uid);
  }

  Expected<void> readDate() {
    const bool isEvent = icalcomponent_isa(entry_) == ICAL_VEVENT_COMPONENT;
    auto* property = icalcomponent_get_first_property(entry_, ICAL_DTSTART_PROPERTY);
    if (!property) property = icalcomponent_get_first_property(entry_, ICAL_DUE_PROPERTY);
    if (!property) {
      // libical drops a date that it cannot parse and adds an error property.
      const bool isToDo = !isEvent && !has(entry_, ICAL_XLICERROR_PROPERTY);
      return isToDo ? Expected<void>() : invalidData(draft_.where, "no valid date");
    }
    const icaltimetype time = icalvalue_get_datetimedate(icalproperty_get_value(property));
    const auto wallSeconds = wallSecondsOf(time);
    if (!wallSeconds) return invalidData(draft_.where, "invalid date");
    counts_.wholeDays += time.is_date ? 1 : 0;
    counts_.repeating +=
        has(entry_, ICAL_RRULE_PROPERTY) || has(entry_, ICAL_RDATE_PROPERTY) ? 1 : 0;
    auto* parameter = icalproperty_get_first_parameter(property, ICAL_TZID_PARAMETER);
    const char* zone = parameter ? icalparameter_get_tzid(parameter) : nullptr;
    if (icaltime_is_utc(time)) {
      draft_.values["date"] = Date(*wallSeconds);
    } else if (!zone) {
      draft_.wallSeconds = wallSeconds;
    } else {
      return readZonedDate(zone, time, *wallSeconds);
    }
    return {};
  }

  Expected<void> readZonedDate(const char* zone, const icaltimetype& time, double wallSeconds) {
    const auto zoned = zones_.dateInZone(zone, time, wallSeconds);
    if (!zoned) return invalidData(draft_.where, zoned.error().localizedDescription);
    draft_.values["date"] = zoned->date;
    if (zoned->zoneName) draft_.values["timezone"] = *zoned->zoneName;
    return {};
  }

  Expected<void> readPlace() {
    const auto location = textOf(entry_, ICAL_LOCATION_PROPERTY);
    const auto written = location ? placeFromText(*location, ',') : std::nullopt;
    const auto text = extraTextOf(entry_, kPlaceProperty);
    auto place = text ? placeFromText(*text, ';') : written;
    if (text && !place)
      return invalidData(draft_.where, "GEO: expected LATITUDE;LONGITUDE, got \"" + *text + "\"");
    if (!place) return {};
    if (written && isSamePlace(*place, *written)) place = written;
    const auto latitude = checkedDegrees(draft_.where + ": latitude", place->latitude, 90);
    if (!latitude) return tl::unexpected(latitude.error());
    const auto longitude = checkedDegrees(draft_.where + ": longitude", place->longitude, 180);
    if (!longitude) return tl::unexpected(longitude.error());
    draft_.values["latitude"] = *latitude;
    draft_.values["longitude"] = *longitude;
    return {};
  }

  /// Restores the values of kValuesProperty, except those that another program has changed in the
  /// standard properties.
  Expected<void> readValues() {
    const auto text = extraTextOf(entry_, kValuesProperty);
    if (!text) return {};
    const auto drafts = draftsFromJson("[" + percentDecoded(*text).value_or("") + "]");
    if (!drafts || drafts->plans.size() != 1) {
      return invalidData(draft_.where, std::string(kValuesProperty) + ": invalid value");
    }
    const PlanDraft& exact = drafts->plans.front();
    if (exact.identifier && readCalendarText(printable(*exact.identifier)) ==
                                readCalendarText(draft_.identifier.value_or(""))) {
      draft_.identifier = exact.identifier;
    }
    for (const auto& [key, value] : exact.values) {
      const auto read = draft_.values.find(key);
      const bool isSame =
          read == draft_.values.end() ? !draft_.wallSeconds : isSameRounded(value, read->second);
      if (isSame) draft_.values[key] = value;
    }
    return {};
  }

  void readNotes() {
    auto notes = textOf(entry_, ICAL_DESCRIPTION_PROPERTY);
    const auto location = textOf(entry_, ICAL_LOCATION_PROPERTY);
    // Exported notes may already contain the location from an earlier import.
    if (location && !location->empty() && !placeFromText(*location, ',') &&
        (!notes || notes->find(*location) == std::string::npos)) {
      notes = notes && !notes->empty() ? *notes + "\n" + *location : *location;
    }
    if (notes) draft_.values["notes"] = *notes;
  }

  icalcomponent* entry_;
  CalendarZones& zones_;
  Counts& counts_;
  PlanDraft draft_;
};

bool isCancelled(icalcomponent* entry) {
  auto* status = icalcomponent_get_first_property(entry, ICAL_STATUS_PROPERTY);
  return status && icalproperty_get_status(status) == ICAL_STATUS_CANCELLED;
}

/// `number` counts the entries of the file.
Expected<void> readCalendar(const CalendarText& calendar, PlanDrafts& drafts, Counts& counts,
                            std::size_t& number) {
  CalendarZones zones(calendar.zones.get());
  for (const auto& lines : calendar.entries) {
    const CalendarComponent entry = componentOfText(lines);
    ++number;
    if (!entry) return invalidData("event " + std::to_string(number), "cannot be parsed");
    if (has(entry.get(), ICAL_RECURRENCEID_PROPERTY)) {
      ++counts.changedTimes;
    } else if (isCancelled(entry.get())) {
      ++counts.cancelled;
    } else {
      auto draft = EntryReader(entry.get(), number, zones, counts).read();
      if (!draft) return tl::unexpected(draft.error());
      drafts.plans.push_back(std::move(*draft));
    }
  }
  return {};
}

}  // namespace

Expected<PlanDrafts> draftsFromCalendar(std::string_view text, const ProgressReport& progress) {
  const auto calendars = calendarsOfText(text, progress);
  if (!calendars) return tl::unexpected(calendars.error());
  PlanDrafts drafts;
  Counts counts;
  std::size_t number = 0;
  for (const auto& calendar : *calendars) {
    const auto done = readCalendar(calendar, drafts, counts, number);
    if (!done) return tl::unexpected(done.error());
  }
  drafts.notes = notesOf(counts);
  return drafts;
}

}  // namespace vantrel::cli
