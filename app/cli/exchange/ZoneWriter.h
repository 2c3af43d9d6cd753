#pragma once

#include <libical/ical.h>

#include "base/Date.h"
#include "platform/text/TimeZone.h"

namespace vantrel::cli {

/// The instant's wall time on the zone's clock, to the second; in UTC without a zone.
icaltimetype calendarTime(Date date, const TimeZone* zone);

/// A VTIMEZONE with every change of the zone's clock from before `first` until some years behind
/// `last`, by the system's rules. Changes are listed one by one: rules guessed from them, as the
/// library's own do, are an hour off for months where a country changed its mind. The caller owns
/// it.
icalcomponent* calendarZone(const TimeZone& zone, Date first, Date last);

}  // namespace vantrel::cli
