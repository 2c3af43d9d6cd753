#include "cli/PinOptions.h"

#include <limits>

#include "cli/ExitCode.h"
#include "cli/ValueOption.h"

namespace vantrel::cli {

namespace {

Expected<std::int32_t> accuracyFromArgument(const std::string& option, const std::string& text) {
  using Limits = std::numeric_limits<std::int32_t>;
  const auto code = integerFromArgument(option, text);
  if (code && *code >= Limits::min() && *code <= Limits::max()) {
    return static_cast<std::int32_t>(*code);
  }
  return tl::make_unexpected(
      failure(kExitUsage, option + " \"" + text + "\"", "allowed are whole numbers of 32 bits"));
}

}  // namespace

bool PinChanges::any() const {
  return latitude || longitude || altitude || offset || accuracy || clearAltitude;
}

void PinChanges::apply(PinLocation& pin) const {
  const LocationCoordinate2D before = pin.coordinate();
  if (latitude || longitude) {
    pin.setCoordinate({latitude.value_or(before.latitude), longitude.value_or(before.longitude)});
  }
  if (clearAltitude) pin.setAltitude(PinLocation::kUnknownAltitude);
  if (altitude) pin.setAltitude(*altitude);
  if (offset) pin.setAltitudeOffset(*offset);
  if (accuracy) pin.setAltitudeAccuracy(*accuracy);
}

void addPinOptions(CLI::App& parser, PinChanges& changes) {
  addValueOption(parser, "--latitude", changes.latitude, &latitudeFromArgument, "DEGREES",
                 "-90 to 90, north positive");
  addValueOption(parser, "--longitude", changes.longitude, &longitudeFromArgument, "DEGREES",
                 "-180 to 180, east positive");
  auto* altitude = addValueOption(parser, "--altitude", changes.altitude, &altitudeFromArgument,
                                  "METRES", "Of the ground");
  parser
      .add_flag_callback(
          "--no-altitude", [&changes] { changes.clearAltitude = true; }, "Forget the altitude")
      ->excludes(altitude);
  addValueOption(parser, "--offset", changes.offset, &floatFromArgument, "METRES",
                 "Above the ground: a building, a tripod");
  addValueOption(parser, "--accuracy", changes.accuracy, &accuracyFromArgument, "CODE",
                 "Of the altitude; -1 is set by hand");
}

Expected<float> altitudeFromArgument(const std::string& option, const std::string& text) {
  auto altitude = floatFromArgument(option, text);
  if (!altitude || PinLocation::isValid(*altitude)) return altitude;
  return tl::make_unexpected(
      failure(kExitUsage, option + " \"" + text + "\"", "this number stands for no altitude"));
}

}  // namespace vantrel::cli
