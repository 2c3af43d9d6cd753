#pragma once

#include <libical/ical.h>

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "base/Date.h"
#include "base/Error.h"
#include "platform/text/TimeZone.h"

namespace vantrel::cli {

struct ZonedDate {
  Date date;
  /// The system zone with the rules of the calendar's zone; `nullopt` if there is none.
  std::optional<std::string> zoneName;
};

/// The zones of one calendar. A name that the system knows ("Europe/Madrid", also after a
/// registry's prefix) has the system's rules, which are newer than the file's. Any other name is
/// that of a VTIMEZONE in the calendar, otherwise a Windows zone. Not thread-safe.
class CalendarZones {
 public:
  /// `calendar` must outlive this object.
  explicit CalendarZones(icalcomponent* calendar);

  /// `wallSeconds` and `wallTime` are the same wall time in the zone, the former since 2001-01-01
  /// 00:00. Errors: kExitBadData for an unknown zone and for rules other than one day of each year.
  Expected<ZonedDate> dateInZone(const std::string& name, const icaltimetype& wallTime,
                                 double wallSeconds);

 private:
  struct FreeZone {
    void operator()(icaltimezone* zone) const { icaltimezone_free(zone, 1); }
  };
  struct Zone {
    std::optional<TimeZone> system;
    /// The rules of the file if they are used; `system` is then the zone that they name.
    std::unique_ptr<icaltimezone, FreeZone> embedded;
  };
  Expected<Zone> zoneNamed(const std::string& name) const;

  std::map<std::string, icalcomponent*> components_;
  std::map<std::string, Zone> zones_;
};

}  // namespace vantrel::cli
