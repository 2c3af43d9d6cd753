#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Date.h"

namespace vantrel {

/// A time zone with the rules of the system's time-zone database. A cheap value; any thread.
class TimeZone {
 public:
  /// The zone of that name ("Europe/Madrid"); nothing when the name is unknown or ill-formed.
  /// Names are untrusted input: only letters, digits and "_+-" in parts joined by "/", of 255 bytes
  /// at most, are looked up.
  static std::optional<TimeZone> timeZoneWithName(std::string_view name);
  static TimeZone timeZoneForSecondsFromGMT(int seconds);
  /// The device's zone as it is now: `TZ`, else where /etc/localtime points.
  static TimeZone defaultTimeZone();

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
  explicit TimeZone(std::shared_ptr<const Rules> rules) : rules_(std::move(rules)) {}
  std::shared_ptr<const Rules> rules_;
};

}  // namespace vantrel
