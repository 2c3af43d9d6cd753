#pragma once

#include "platform/text/Calendar.h"

namespace vantrel {

/// The user's calendar with the locale and the device's zone as they were at the first call; later
/// changes do not reach it. Any thread.
const Calendar& cachedCalendar();
/// The Gregorian calendar in GMT. Any thread.
const Calendar& gmtCachedCalendar();

}  // namespace vantrel
