#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"

namespace vantrel {

class ZoneRules;

/// A time zone with the rules of the system's time-zone database, which is $TZDIR or
/// /usr/share/zoneinfo. Zones are read once per process. A cheap value; thread-safe.
class TimeZone {
 public:
  /// The zone of that name: one of the database ("Europe/Madrid"), or an offset as
  /// `timeZoneForSecondsFromGMT` names it ("GMT+0545"). `nullopt` if the name is unknown or
  /// malformed: names are untrusted input, and only letters, digits and "_+-" in parts joined by
  /// "/", of 255 bytes at most, reach the file system.
  static std::optional<TimeZone> timeZoneWithName(std::string_view name);
  static TimeZone timeZoneForSecondsFromGMT(int seconds);
  /// The zone of that name; the device's if there is no name or the name is unknown.
  static TimeZone timeZoneOrDefault(const std::optional<std::string>& name);
  /// The device's zone as it is now: that of `TZ`, which holds a name or a POSIX rule
  /// ("<+03>-3"), else `systemTimeZone`. Of a path in `TZ` only the name after "zoneinfo/" counts;
  /// a path without the name of a zone means `systemTimeZone`, any other value UTC.
  static TimeZone defaultTimeZone();
  /// The zone of the file or link `localtime` in `folder`; UTC if it is no zone. The zone of a file
  /// is named by the file `timezone` if its rules are the same, else after a zone with the same
  /// rules, else after its present offset.
  static TimeZone systemTimeZone(const std::filesystem::path& folder = "/etc");

  /// A name that `timeZoneWithName` accepts.
  const std::string& name() const;
  /// Seconds east of Greenwich at that instant, daylight saving included.
  int secondsFromGMTForDate(Date date) const;
  bool isDaylightSavingTimeForDate(Date date) const;
  /// "CEST"; "+0545" where people have no name for it.
  std::string abbreviationForDate(Date date) const;
  /// The first change of the zone's clock behind that instant; nothing when there is none.
  std::optional<Date> nextDaylightSavingTimeTransitionAfterDate(Date date) const;
  /// The instant of a wall time given as seconds since 2001-01-01 00:00 on that zone's clock. A
  /// repeated wall time is the first of the two; a skipped one moves forward by the gap.
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
