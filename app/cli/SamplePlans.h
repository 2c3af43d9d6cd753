#pragma once

#include <string>
#include <vector>

#include "base/Date.h"

namespace vantrel::cli {

/// A plan to try things out with; name and notes are keys of the table "Plannings".
struct SamplePlan {
  std::string name;
  std::string notes;
  std::string timezone;
  double latitude = 0;
  double longitude = 0;
  Date date;
};

/// Eight plans in coming days, each when the light that it needs is there.
std::vector<SamplePlan> samplePlans(Date now);

/// When the sun's centre passes `altitude` (degrees) on a civil day, counted from 2001-01-01, at a
/// place (degrees, north and east positive): in the morning or in the evening. Good to some
/// minutes; on days without that, when it comes closest. The sunrise equation.
Date sunPassesAltitude(double altitude, bool inTheMorning, int civilDay, double latitude,
                       double longitude);

}  // namespace vantrel::cli
