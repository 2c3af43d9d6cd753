#include "cli/geo/PinPair.h"

#include <cctype>
#include <cmath>
#include <optional>
#include <utility>

#include "cli/Arguments.h"

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

std::optional<double> degrees(std::string_view text, const Axis& axis) {
  double sign = 1;
  if (!text.empty()) {
    const int letter = std::toupper(static_cast<unsigned char>(text.back()));
    if (letter == axis.positive || letter == axis.negative) {
      // Not both a sign and a hemisphere: they could contradict each other.
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

Expected<PinPair> pinPairFromArguments(PinPairTexts texts, bool isLonLat) {
  if (isLonLat) {
    std::swap(texts[0], texts[1]);
    std::swap(texts[3], texts[4]);
  }
  PinPair pins;
  struct Field {
    const char* name;
    const Axis* axis;
    double& target;
  };
  const Field fields[] = {
      {"LAT1", &kLatitude, pins.source.latitude},
      {"LON1", &kLongitude, pins.source.longitude},
      {"ALT1", nullptr, pins.sourceAltitude},
      {"LAT2", &kLatitude, pins.destination.latitude},
      {"LON2", &kLongitude, pins.destination.longitude},
      {"ALT2", nullptr, pins.destinationAltitude},
  };
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const auto& [name, axis, target] = fields[i];
    const auto value = axis ? degrees(texts[i], *axis) : finiteNumber(texts[i]);
    if (!value)
      return invalidArgument(name, texts[i], axis ? axis->expected : "a finite number of metres");
    target = *value;
  }
  return pins;
}

}  // namespace vantrel::cli
