#pragma once

#include <optional>
#include <string>

#include "base/Error.h"
#include "cli/Arguments.h"
#include "cli/CommandGroup.h"
#include "geo/PinLocation.h"

namespace vantrel::cli {

/// What a command is given for a pin; nothing stays as it is.
struct PinChanges {
  std::optional<double> latitude;
  std::optional<double> longitude;
  std::optional<float> altitude;
  std::optional<float> offset;
  std::optional<std::int32_t> accuracy;
  bool clearAltitude = false;

  bool any() const;
  void apply(PinLocation& pin) const;
};

/// --latitude, --longitude, --altitude, --no-altitude, --offset and --accuracy; `changes` outlives
/// the parsing.
void addPinOptions(CLI::App& parser, PinChanges& changes);

/// Metres; none of the marks that stand for no altitude.
Expected<float> altitudeFromArgument(const std::string& option, const std::string& text);

}  // namespace vantrel::cli
