#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"

namespace vantrel {

class ZoneRules;

/// A time zone with the rules of the system's zone database, in $TZDIR or /usr/share/zoneinfo. Each
/// zone is read once per process. An immutable value, cheap to copy; thread-safe.
class TimeZone {
 public:
  /// Returns a zone of the database ("Europe/Madrid") or a fixed offset ("GMT+0545"). `nullopt` if
  /// the name is unknown or malformed. Names are untrusted input: only names of at most 255 bytes,
  /// of letters, digits and "_+-" in parts joined by "/", are used as paths.
  static std::optional<TimeZone> timeZoneWithName(std::string_view name);
  static TimeZone timeZoneForSecondsFromGMT(int seconds);
  /// The zone with that name; `defaultTimeZone` without a name or if it is unknown.
  static TimeZone timeZoneOrDefault(const std::optional<std::string>& name);
  /// The device's current zone, from the environment variable TZ:
  ///
  ///     "Europe/Madrid", ":Europe/Madrid"       the zone with that name
  ///     "/usr/share/zoneinfo/Europe/Madrid"     the same
  ///     not set, or another path                `systemTimeZone()`
  ///     "<+03>-3", "CET-1CEST,M3.5.0,M10.5.0"   the zone of that POSIX rule
  ///     "", "Nowhere/City", any other value     UTC, without a warning, as in libc
  static TimeZone defaultTimeZone();
  /// The zone of the file or link `localtime` in `folder`; UTC if it is not a zone. A file gets the
  /// name in the file `timezone` if that zone has the same rules, otherwise the name of a zone with
  /// the same rules, otherwise that of its current offset.
  static TimeZone systemTimeZone(const std::filesystem::path& folder = "/etc");

  /// A name that `timeZoneWithName` accepts.
  const std::string& name() const;
  /// Seconds east of Greenwich, with daylight saving time.
  int secondsFromGMTForDate(Date date) const;
  bool isDaylightSavingTimeForDate(Date date) const;
  /// "CEST", or "+0545" for zones without an abbreviation.
  std::string abbreviationForDate(Date date) const;
  /// The first change after `date` of the offset, of daylight saving time or of the abbreviation;
  /// `nullopt` if there is none.
  std::optional<Date> nextDaylightSavingTimeTransitionAfterDate(Date date) const;
  /// The instant of a wall time in seconds since 2001-01-01 00:00 on the zone's clock. A skipped
  /// time moves forward by the length of the gap; a repeated time is the first of the two. In
  /// Europe/Madrid:
  ///
  ///     2024-03-31 02:30 (skipped)    2024-03-31T01:30Z, shown as 03:30
  ///     2024-10-27 02:30 (repeated)   2024-10-27T00:30Z, not 01:30Z
  Date dateForWallSeconds(double wallSeconds) const;

  friend bool operator==(const TimeZone& a, const TimeZone& b) { return a.name() == b.name(); }

 private:
  struct Rules;
  TimeZone(std::string name, ZoneRules rules);
  static TimeZone timeZoneWithRules(const std::optional<ZoneRules>& rules, std::string_view source,
                                    std::string_view likelyName);
  std::shared_ptr<const Rules> rules_;
};

}  // namespace vantrel
