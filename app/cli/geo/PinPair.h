#pragma once

#include <array>
#include <string>
#include <string_view>

#include "base/Error.h"
#include "base/LocationCoordinate2D.h"

namespace vantrel::cli {

/// Two points with altitudes in metres.
struct PinPair {
  LocationCoordinate2D source;
  double sourceAltitude = 0;
  LocationCoordinate2D destination;
  double destinationAltitude = 0;
};

/// LAT1 LON1 ALT1 LAT2 LON2 ALT2.
using PinPairTexts = std::array<std::string_view, 6>;

/// Parses two points. Latitudes are -90 to 90 and longitudes -540 to 540 degrees; the suffixes N,
/// S, E and W replace the sign. `isLonLat`: each longitude is before its latitude. Fails with
/// kExitUsage; the message has the name of the argument and what is expected.
Expected<PinPair> pinPairFromArguments(PinPairTexts texts, bool isLonLat);

/// Parses a latitude: -90 to 90, or 0 to 90 with the suffix N or S. Fails with kExitUsage.
Expected<double> hemisphereLatitudeFromArgument(const std::string& name, const std::string& text);

}  // namespace vantrel::cli
