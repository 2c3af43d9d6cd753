#pragma once

#include <optional>
#include <string>

#include "base/Error.h"
#include "cli/Arguments.h"
#include "cli/CommandGroup.h"
#include "geo/PinLocation.h"

namespace vantrel::cli {

/// Changes of a pin; `nullopt` keeps a value.
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

/// Adds --latitude, --longitude, --altitude, --no-altitude, --offset and --accuracy. `changes` must
/// outlive the parser.
void addPinOptions(CLI::App& parser, PinChanges& changes);

/// Sets the altitude to that of the ground, from a web service; blocks. Coordinates that
/// `changes` lacks are those of `stored`. Errors: kExitUsage if a coordinate is missing;
/// kExitMissing if the service knows no altitude there.
Expected<void> lookUpAltitude(PinChanges& changes,
                              const std::optional<LocationCoordinate2D>& stored);

/// Metres; rejects the numbers that mark an unknown altitude.
Expected<float> altitudeFromArgument(const std::string& option, const std::string& text);

}  // namespace vantrel::cli
