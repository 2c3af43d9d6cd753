#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "cli/geo/PinPair.h"

namespace vantrel::cli {

/// Azimuths are "--" (null in JSON) where there is no direction.

/// For people: one line for each value.
std::string curveDetails(const GeodeticCurve& curve, Direction direction);

/// Adds one line, "AZIMUTH1 AZIMUTH2 DISTANCE ELEVATION": degrees with eight decimals, metres with
/// the digits that single precision has.
void appendCurveLine(std::string& text, const GeodeticCurve& curve, Direction direction);

nlohmann::ordered_json jsonOfCurve(const GeodeticCurve& curve, Direction direction);

/// "40.44309401°" and "6893166.5 m"; "--" for what is not finite.
std::string degreesText(double degrees);
std::string metresText(double metres);

}  // namespace vantrel::cli
