#pragma once

#include <string>
#include <vector>

#include "base/Error.h"

namespace vantrel::cli {

/// The size of a common sensor or film frame, in millimetres.
struct SensorFormat {
  std::string name;
  float width = 0;
  float height = 0;
};

/// Returns the formats in the bundle, large to small within each kind.
Expected<std::vector<SensorFormat>> sensorFormats();

/// Returns the format named `text`, or the only one whose name contains it; ignores case, spaces
/// and hyphens, and accepts "x" for "×". Fails with kExitUsage if none or several match; the
/// message starts with the name of the `option`.
Expected<SensorFormat> sensorNamed(const std::string& option, const std::string& text);

}  // namespace vantrel::cli
