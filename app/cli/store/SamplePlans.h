#pragma once

#include <string>
#include <vector>

#include "base/Date.h"

namespace vantrel::cli {

/// A sample plan. `name` and `notes` are keys of the string table "Plannings".
struct SamplePlan {
  std::string name;
  std::string notes;
  std::string timezone;
  double latitude = 0;
  double longitude = 0;
  Date date;
};

/// Returns eight plans after `now`, each at a time with suitable light.
std::vector<SamplePlan> samplePlans(Date now);

}  // namespace vantrel::cli
