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

}  // namespace vantrel::cli
