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

/// What a calendar's zone makes of a wall time.
struct ZonedDate {
  Date date;
  /// The zone of the system that it is told in; nothing when none has the calendar's rules.
  std::optional<std::string> zoneName;
};

/// The zones that one calendar names. A name that the system knows ("Europe/Madrid", also with a
/// registry's prefix) means the system's rules, which are newer than any file's. Any other name
/// means the VTIMEZONE in the calendar, and without one the names that Windows has.
class CalendarZones {
 public:
  /// Borrows the calendar.
  explicit CalendarZones(icalcomponent* calendar);

  /// `wallSeconds` since 2001-01-01 00:00 on the clock of the zone. kExitBadData for a zone that
  /// nobody knows, and for rules that say no day of a year as those of clocks do.
  Expected<ZonedDate> dateInZone(const std::string& name, const icaltimetype& wallTime,
                                 double wallSeconds);

 private:
  struct FreeZone {
    void operator()(icaltimezone* zone) const { icaltimezone_free(zone, 1); }
  };
  struct Zone {
    std::optional<TimeZone> system;
    /// The file's own rules, where they count; `system` is then the zone they say they are of.
    std::unique_ptr<icaltimezone, FreeZone> embedded;
  };
  Expected<Zone> zoneNamed(const std::string& name) const;

  std::map<std::string, icalcomponent*> components_;
  std::map<std::string, Zone> zones_;
};

}  // namespace vantrel::cli
