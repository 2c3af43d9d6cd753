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
  bool lookUpAltitude = false;

  bool any() const;
  void apply(PinLocation& pin) const;
};

/// --latitude, --longitude, --altitude, --no-altitude, --offset and --accuracy; `changes` outlives
/// the parsing.
void addPinOptions(CLI::App& parser, PinChanges& changes);

/// Asks a web service for the altitude. The place is the one given; what it lacks is taken from
/// `stored`. kExitMissing where no altitude is known.
Expected<void> lookUpAltitude(PinChanges& changes,
                              const std::optional<LocationCoordinate2D>& stored);

/// Metres; none of the marks that stand for no altitude.
Expected<float> altitudeFromArgument(const std::string& option, const std::string& text);

}  // namespace vantrel::cli
