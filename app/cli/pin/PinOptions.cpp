#include "cli/pin/PinOptions.h"

#include <limits>

#include "cli/Command.h"
#include "cli/lookup/PlaceService.h"
#include "common/ExitCode.h"

namespace vantrel::cli {

namespace {

Expected<std::int32_t> accuracyFromArgument(const std::string& option, const std::string& text) {
  using Limits = std::numeric_limits<std::int32_t>;
  const auto code = integerFromArgument(option, text);
  if (code && *code >= Limits::min() && *code <= Limits::max()) {
    return static_cast<std::int32_t>(*code);
  }
  return invalidArgument(option, text, "a 32-bit integer");
}

}  // namespace

bool PinChanges::any() const {
  return latitude || longitude || altitude || offset || accuracy || clearAltitude || lookUpAltitude;
}

void PinChanges::apply(PinLocation& pin) const {
  const LocationCoordinate2D before = pin.coordinate();
  if (latitude || longitude) {
    pin.setCoordinate({latitude.value_or(before.latitude), longitude.value_or(before.longitude)});
  }
  if (clearAltitude) pin.setAltitude(PinLocation::kUnknownAltitude);
  if (altitude) pin.setAltitude(*altitude);
  // An altitude from a web service is not set by hand.
  if (lookUpAltitude && pin.isAltitudeSetManually()) pin.setAltitudeAccuracy(0);
  if (offset) pin.setAltitudeOffset(*offset);
  if (accuracy) pin.setAltitudeAccuracy(*accuracy);
}

void addPinOptions(CLI::App& parser, PinChanges& changes) {
  addValueOption(parser, "--latitude", changes.latitude, &latitudeFromArgument, "DEGREES",
                 "-90 to 90, north positive");
  addValueOption(parser, "--longitude", changes.longitude, &longitudeFromArgument, "DEGREES",
                 "-180 to 180, east positive");
  const auto altitudeOrLookUp = [&changes](const std::string& option, const std::string& text) {
    changes.lookUpAltitude = text == kLookUp;
    return changes.lookUpAltitude ? Expected<float>(PinLocation::kMissingAltitude)
                                  : altitudeFromArgument(option, text);
  };
  auto* altitude =
      addValueOption(parser, "--altitude", changes.altitude, altitudeOrLookUp, "METRES",
                     "Of the ground; auto asks GeoNames, see vantrel lookup");
  parser
      .add_flag_callback(
          "--no-altitude", [&changes] { changes.clearAltitude = true; }, "Remove the altitude")
      ->excludes(altitude);
  addValueOption(parser, "--offset", changes.offset, &floatFromArgument, "METRES",
                 "Height above the ground, as of a building or tripod");
  addValueOption(parser, "--accuracy", changes.accuracy, &accuracyFromArgument, "CODE",
                 "Accuracy of the altitude; -1 means set by hand");
}

Expected<void> lookUpAltitude(PinChanges& changes,
                              const std::optional<LocationCoordinate2D>& stored) {
  const auto fail = [](ExitCode code, const char* why) {
    return tl::unexpected(failure(code, "--altitude auto", why));
  };
  if (!stored && !(changes.latitude && changes.longitude)) {
    return fail(kExitUsage, "requires --latitude and --longitude");
  }
  const LocationCoordinate2D at = stored.value_or(LocationCoordinate2D());
  const auto found = altitudeOfPlace(
      {changes.latitude.value_or(at.latitude), changes.longitude.value_or(at.longitude)});
  if (!found) return tl::unexpected(found.error());
  if (!*found) return fail(kExitMissing, "the service knows no altitude there");
  changes.altitude = **found;
  return {};
}

Expected<float> altitudeFromArgument(const std::string& option, const std::string& text) {
  auto altitude = floatFromArgument(option, text);
  if (!altitude || PinLocation::isValid(*altitude)) return altitude;
  return invalidArgument(option, text, "an altitude in metres");
}

}  // namespace vantrel::cli
