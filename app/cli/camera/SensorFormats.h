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

/// Those that are delivered with the program, large to small within each kind.
Expected<std::vector<SensorFormat>> sensorFormats();

/// The one of that name, or the only one whose name has `text` in it; case, spaces and hyphens do
/// not count, and an "x" may stand for the sign. kExitUsage when there is none, or several.
Expected<SensorFormat> sensorNamed(const std::string& option, const std::string& text);

}  // namespace vantrel::cli
