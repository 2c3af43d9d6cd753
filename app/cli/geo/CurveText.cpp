#include "cli/geo/CurveText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

#include "cli/JsonText.h"
#include "common/TerminalText.h"

namespace vantrel::cli {

namespace {

constexpr const char* kNone = "--";
/// A millimetre on the ground.
constexpr int kDegreeDecimals = 8;
constexpr double kLeastDegrees = 0.5e-8;
/// What the earth's axes are given with.
constexpr int kMetreDecimals = 4;
/// The largest double has 309 digits before the point.
constexpr std::size_t kMostCharacters = 336;

void appendFixed(std::string& text, double number, int decimals) {
  std::array<char, kMostCharacters> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                 std::chars_format::fixed, decimals);
  text.append(digits.data(), end.ptr);
}

void appendDegrees(std::string& text, double degrees) {
  if (!std::isfinite(degrees)) {
    text += kNone;
  } else {
    // Rounding leaves no sign before a zero.
    appendFixed(text, std::abs(degrees) < kLeastDegrees ? 0 : degrees, kDegreeDecimals);
  }
}

/// 0 to 360, where 360 itself is never reached by rounding.
void appendAzimuth(std::string& text, double azimuth, Direction direction) {
  constexpr double kRoundedToFullTurn = 360 - kLeastDegrees;
  if (direction == Direction::kKnown) {
    appendDegrees(text, azimuth < kRoundedToFullTurn ? azimuth : 0);
  } else {
    text += kNone;
  }
}

void appendDistance(std::string& text, double distance) {
  if (!std::isfinite(distance)) {
    text += kNone;
    return;
  }
  std::array<char, kMostCharacters> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(),
                                 static_cast<float>(distance), std::chars_format::fixed);
  text.append(digits.data(), end.ptr);
}

}  // namespace

std::string curveDetails(const GeodeticCurve& curve, Direction direction) {
  const auto azimuth = [&](double degrees) {
    std::string text;
    appendAzimuth(text, degrees, direction);
    return direction == Direction::kKnown ? text + "°" : text;
  };
  std::string distance;
  appendDistance(distance, curve.distance());
  return "Azimuth at the start  " + azimuth(curve.startAzimuth()) + "\nAzimuth back          " +
         azimuth(curve.endAzimuth()) + "\nDistance              " + distance +
         " m\nApparent elevation    " + degreesText(curve.apparentElevation()) + "\n";
}

void appendCurveLine(std::string& text, const GeodeticCurve& curve, Direction direction) {
  appendAzimuth(text, curve.startAzimuth(), direction);
  text += ' ';
  appendAzimuth(text, curve.endAzimuth(), direction);
  text += ' ';
  appendDistance(text, curve.distance());
  text += ' ';
  appendDegrees(text, curve.apparentElevation());
  text += '\n';
}

Json jsonOfCurve(const GeodeticCurve& curve, Direction direction) {
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
  return std::isfinite(degrees) ? text + "°" : text;
}

std::string metresText(double metres) {
  if (!std::isfinite(metres)) return kNone;
  std::string text;
  appendFixed(text, metres, kMetreDecimals);
  return text + " m";
}

}  // namespace vantrel::cli
