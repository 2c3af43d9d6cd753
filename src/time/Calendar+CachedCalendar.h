#pragma once

#include "platform/text/Calendar.h"

namespace vantrel {

/// The user's calendar with the locale and time zone of the first call; later changes have no
/// effect. Thread-safe.
const Calendar& cachedCalendar();
/// The Gregorian calendar in GMT. Thread-safe.
const Calendar& gmtCachedCalendar();

}  // namespace vantrel
