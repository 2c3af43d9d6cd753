#pragma once

#include <array>
#include <string>
#include <string_view>

#include "base/Error.h"
#include "base/LocationCoordinate2D.h"
#include "geo/GeodeticCurve.h"

namespace vantrel::cli {

/// Two pins as they are typed: latitude, longitude, altitude of the source, then the destination.
struct PinPair {
  LocationCoordinate2D source;
  double sourceAltitude = 0;
  LocationCoordinate2D destination;
  double destinationAltitude = 0;
};

using PinPairTexts = std::array<std::string_view, 6>;

/// Latitudes are -90 to 90, longitudes -540 to 540 degrees; N, S, E or W behind the number may
/// stand for the sign. Altitudes are metres. `isLonLat` says that longitudes come first.
/// kExitUsage, naming the argument and what is allowed.
Expected<PinPair> pinPairFromArguments(const PinPairTexts& texts, bool isLonLat);

/// -90 to 90, or 0 to 90 with N or S behind. kExitUsage.
Expected<double> hemisphereLatitudeFromArgument(const std::string& name, const std::string& text);

GeodeticCurve curveOf(const PinPair& pins);

enum class Direction {
  kKnown,
  kSamePoint,        ///< No point lies in any direction from itself.
  kNearlyAntipodal,  ///< Found too imprecisely to tell one; the distance is rough as well.
};
/// What the azimuths of the pair's curve are worth. Those along one meridian, 0 and 180, are exact
/// though the iteration never settles for them.
Direction directionOf(const PinPair& pins, const GeodeticCurve& curve);

}  // namespace vantrel::cli
