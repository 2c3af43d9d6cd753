#include "cli/geo/CurveText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

#include "common/TerminalText.h"
#include "geo/GeodeticCalculator.h"

namespace vantrel::cli {

namespace {

using Direction = PinCurve::Direction;

/// A millimetre on the ground.
constexpr int kDegreeDecimals = 8;
constexpr double kLeastDegrees = 0.5e-8;
/// The precision of the earth's axes.
constexpr int kMetreDecimals = 4;

/// Appends "--" if `number` is not finite. `decimals` are passed to std::to_chars, if any.
template <typename Number, typename... Decimals>
void appendFixed(std::string& text, Number number, Decimals... decimals) {
  if (!std::isfinite(number)) {
    text += kUnknown;
    return;
  }
  // The largest double has 309 digits before the point.
  std::array<char, 336> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                 std::chars_format::fixed, decimals...);
  text.append(digits.data(), end.ptr);
}

void appendDegrees(std::string& text, double degrees) {
  // No sign before a zero.
  appendFixed(text, std::abs(degrees) < kLeastDegrees ? 0 : degrees, kDegreeDecimals);
}

/// Rounds to below 360.
void appendAzimuth(std::string& text, double azimuth, Direction direction) {
  constexpr double kRoundedToFullTurn = 360 - kLeastDegrees;
  if (direction == Direction::kKnown) {
    appendDegrees(text, azimuth < kRoundedToFullTurn ? azimuth : 0);
  } else {
    text += kUnknown;
  }
}

void appendDistance(std::string& text, double distance) {
  appendFixed(text, static_cast<float>(distance));
}

std::string withUnit(const std::string& number, const char* unit) {
  return number == kUnknown ? number : number + unit;
}

Direction directionOf(const PinPair& pins, const GeodeticCurve& curve) {
  constexpr double kFullTurn = 360;
  const bool isOneMeridian =
      std::remainder(pins.source.longitude - pins.destination.longitude, kFullTurn) == 0;
  if (isOneMeridian && pins.source.latitude == pins.destination.latitude) {
    return Direction::kSamePoint;
  }
  return curve.converged() || isOneMeridian ? Direction::kKnown : Direction::kNearlyAntipodal;
}

}  // namespace

PinCurve::PinCurve(const PinPair& pins)
    : curve(GeodeticCalculator().geodeticCurveBetweenSource(
          pins.source, pins.sourceAltitude, pins.destination, pins.destinationAltitude)),
      direction(directionOf(pins, curve)) {}

std::string curveDetails(const PinCurve& pair, const Console& console) {
  const auto azimuth = [&](double degrees) {
    std::string text;
    appendAzimuth(text, degrees, pair.direction);
    return withUnit(text, "°");
  };
  std::string distance;
  appendDistance(distance, pair.curve.distance());
  return console.labelled("Azimuth at the start", azimuth(pair.curve.startAzimuth()), kWideLabel) +
         console.labelled("Azimuth back", azimuth(pair.curve.endAzimuth()), kWideLabel) +
         console.labelled("Distance", distance + " m", kWideLabel) +
         console.labelled("Apparent elevation", degreesText(pair.curve.apparentElevation()),
                          kWideLabel);
}

void appendCurveLine(std::string& text, const PinCurve& pair) {
  appendAzimuth(text, pair.curve.startAzimuth(), pair.direction);
  text += ' ';
  appendAzimuth(text, pair.curve.endAzimuth(), pair.direction);
  text += ' ';
  appendDistance(text, pair.curve.distance());
  text += ' ';
  appendDegrees(text, pair.curve.apparentElevation());
  text += '\n';
}

Json jsonOfCurve(const PinCurve& pair) {
  const auto& [curve, direction] = pair;
  const bool isKnown = direction == Direction::kKnown;
  const auto azimuth = [&](double degrees) { return isKnown ? Json(degrees) : Json(nullptr); };
  return {
      {"startAzimuth", azimuth(curve.startAzimuth())},
      {"endAzimuth", azimuth(curve.endAzimuth())},
      {"distance", decimalOfFloat(static_cast<float>(curve.distance()))},
      {"apparentElevation", curve.apparentElevation()},
      {"converged", isKnown},
  };
}

std::string degreesText(double degrees) {
  std::string text;
  appendDegrees(text, degrees);
  return withUnit(text, "°");
}

std::string metresText(double metres) {
  std::string text;
  appendFixed(text, metres, kMetreDecimals);
  return withUnit(text, " m");
}

}  // namespace vantrel::cli
