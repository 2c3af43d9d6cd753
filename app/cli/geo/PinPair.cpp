#include "cli/geo/PinPair.h"

#include <cctype>
#include <cmath>
#include <optional>

#include "cli/Arguments.h"
#include "common/ExitCode.h"
#include "geo/GeodeticCalculator.h"

namespace vantrel::cli {

namespace {

struct Axis {
  double limit;
  char positive;
  char negative;
  const char* expected;
};
constexpr Axis kLatitude{90, 'N', 'S', "degrees from -90 to 90, or 0 to 90 followed by N or S"};
constexpr Axis kLongitude{540, 'E', 'W',
                          "degrees from -540 to 540, or 0 to 540 followed by E or W"};

constexpr const char* kMetres = "a finite number of metres";

std::optional<double> degrees(std::string_view text, const Axis& axis) {
  double sign = 1;
  if (!text.empty()) {
    const int letter = std::toupper(static_cast<unsigned char>(text.back()));
    if (letter == axis.positive || letter == axis.negative) {
      // A sign and a hemisphere could only contradict each other.
      if (text.front() == '-' || text.front() == '+') return std::nullopt;
      sign = letter == axis.positive ? 1 : -1;
      text.remove_suffix(1);
    }
  }
  const auto number = finiteNumber(text);
  if (!number || !(std::abs(*number) <= axis.limit)) return std::nullopt;
  return sign * *number;
}

}  // namespace

Expected<double> hemisphereLatitudeFromArgument(const std::string& name, const std::string& text) {
  if (const auto number = degrees(text, kLatitude)) return *number;
  return invalidArgument(name, text, kLatitude.expected);
}

Expected<PinPair> pinPairFromArguments(const PinPairTexts& texts, bool isLonLat) {
  PinPair pins;
  struct Field {
    const char* name;
    const Axis* axis;
    double& target;
  };
  const std::array fields = {
      Field{"LAT1", &kLatitude, pins.source.latitude},
      Field{"LON1", &kLongitude, pins.source.longitude},
      Field{"ALT1", nullptr, pins.sourceAltitude},
      Field{"LAT2", &kLatitude, pins.destination.latitude},
      Field{"LON2", &kLongitude, pins.destination.longitude},
      Field{"ALT2", nullptr, pins.destinationAltitude},
  };
  constexpr std::array<std::size_t, 6> kLatLon = {0, 1, 2, 3, 4, 5};
  constexpr std::array<std::size_t, 6> kLonLat = {1, 0, 2, 4, 3, 5};
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const Field& field = fields[(isLonLat ? kLonLat : kLatLon)[i]];
    const auto value = field.axis ? degrees(texts[i], *field.axis) : finiteNumber(texts[i]);
    if (!value) {
      return invalidArgument(field.name, texts[i], field.axis ? field.axis->expected : kMetres);
    }
    field.target = *value;
  }
  return pins;
}

GeodeticCurve curveOf(const PinPair& pins) {
  return GeodeticCalculator().geodeticCurveBetweenSource(
      pins.source, pins.sourceAltitude, pins.destination, pins.destinationAltitude);
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

}  // namespace vantrel::cli
