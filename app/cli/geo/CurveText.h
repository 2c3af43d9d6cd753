#pragma once

#include <string>

#include "cli/Console.h"
#include "cli/JsonText.h"
#include "cli/geo/PinPair.h"
#include "geo/GeodeticCurve.h"

namespace vantrel::cli {

/// The curve between two points. Azimuths are "--" (null in JSON) unless the direction is known.
struct PinCurve {
  enum class Direction {
    kKnown,
    kSamePoint,
    kNearlyAntipodal,  ///< The iteration did not converge; the distance is inexact too.
  };

  /// Azimuths along one meridian, 0 and 180, are exact although the iteration does not converge.
  explicit PinCurve(const PinPair& pins);

  GeodeticCurve curve;
  Direction direction = Direction::kKnown;
};

/// The width of the labels of several values.
inline constexpr std::size_t kWideLabel = 21;

/// Returns one labelled line for each value.
std::string curveDetails(const PinCurve& pair, const Console& console);

/// Appends one line, "AZIMUTH1 AZIMUTH2 DISTANCE ELEVATION": degrees with eight decimals, metres
/// with as many digits as single precision has.
void appendCurveLine(std::string& text, const PinCurve& pair);

Json jsonOfCurve(const PinCurve& pair);

/// Returns "40.44309401°" or "6893166.5 m"; "--" if the number is not finite.
std::string degreesText(double degrees);
std::string metresText(double metres);

}  // namespace vantrel::cli
