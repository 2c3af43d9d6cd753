#include <array>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/Arguments.h"
#include "cli/Command.h"
#include "cli/JsonText.h"
#include "cli/geo/CurveBatch.h"
#include "cli/geo/CurveText.h"
#include "cli/geo/PinPair.h"
#include "common/ExitCode.h"
#include "common/TerminalText.h"
#include "geo/GeodeticCalculator.h"

namespace vantrel::cli {

namespace {

/// A number of the answer, its label and its JSON key.
struct Answer {
  const char* label;
  const char* key;
  double value;
  std::string text;
};

int print(const std::vector<Answer>& answers, Console& console) {
  Json json = Json::object();
  std::string text;
  for (const auto& answer : answers) {
    json[answer.key] = answer.value;
    text += answers.size() == 1 ? answer.text + "\n"
                                : console.labelled(answer.label, answer.text, kWideLabel);
  }
  console.print(console.isJson() ? jsonText(json) : text);
  return kExitDone;
}

void warnWithoutDirection(PinCurve::Direction direction, Console& console) {
  using Direction = PinCurve::Direction;
  if (direction == Direction::kSamePoint) {
    console.tell("vantrel: geo curve: no azimuths: both points are the same\n");
  } else if (direction == Direction::kNearlyAntipodal) {
    console.tell(
        "vantrel: geo curve: no azimuths: the points are nearly antipodal, and the distance may be "
        "a hundred kilometres short\n");
  }
}

constexpr std::size_t kCurveArguments = std::tuple_size_v<PinPairTexts>;

struct CurveOptions {
  std::vector<std::string> points;
  bool isLonLat = false;
  std::optional<std::string> batch;
};

int showCurve(const CurveOptions& options, Console& console) {
  if (options.batch) {
    if (options.points.empty()) return answerCurves(*options.batch, options.isLonLat, console);
    return console.fail(
        failure(kExitUsage, options.points.front(), "with --batch, points are read from the file"));
  }
  if (options.points.size() != kCurveArguments) {
    return console.fail(failure(kExitUsage, "geo curve",
                                "expected LAT1 LON1 ALT1 LAT2 LON2 ALT2; see vantrel geo curve "
                                "--help"));
  }
  PinPairTexts texts;
  std::copy(options.points.begin(), options.points.end(), texts.begin());
  const auto pins = pinPairFromArguments(texts, options.isLonLat);
  if (!pins) return console.fail(pins.error());
  const PinCurve curve(*pins);
  console.print(console.isJson() ? jsonText(jsonOfCurve(curve)) : curveDetails(curve, console));
  warnWithoutDirection(curve.direction, console);
  return kExitDone;
}

void addCurveOptions(CLI::App& parser, CurveOptions& options) {
  constexpr std::array kPositionals = {
      std::pair{"LAT1", "Latitude of the first point: -90 to 90 degrees, or as 41.39N"},
      std::pair{"LON1", "Longitude: -540 to 540 degrees, or as 2.17E"},
      std::pair{"ALT1", "Altitude: metres"},
      std::pair{"LAT2", "Latitude of the second point"},
      std::pair{"LON2", "Its longitude"},
      std::pair{"ALT2", "Its altitude"},
  };
  for (const auto& [name, description] : kPositionals) {
    const auto keep = [&options](const CLI::results_t& values) {
      options.points.push_back(typedText(values.front()));
      return true;
    };
    parser.add_option(name, keep, description)->type_name("");
  }
  parser.add_flag("--lonlat", options.isLonLat, "Longitudes are before latitudes");
  const auto keepBatch = [&options](const CLI::results_t& values) {
    options.batch = values.empty() || values.front().empty() ? "-" : typedText(values.front());
    return true;
  };
  parser
      .add_option("--batch", keepBatch, "Read points from a file or standard input, a pair a line")
      ->expected(0, 1)
      ->type_name("[FILE]");
}

using Number = std::optional<double>;

struct SightOptions {
  Number distance;
  Number radius;
  Number angleOrHeight;
  Number redAltitude;
  Number blackAltitude;
};

/// The options of `geo height` and `geo elevation`, which differ in one.
void addSightOptions(CLI::App& parser, SightOptions& options, const char* name,
                     const char* valueName, const char* description) {
  const auto add = [&](const char* option, Number& target, const char* unit, const char* what) {
    addValueOption(parser, option, target, &realFromArgument, unit, what)->required();
  };
  add("--pin2pin-distance", options.distance, "METRES", "Between the two pins, along the ground");
  add("--earth-radius", options.radius, "METRES", "See vantrel geo radius");
  add(name, options.angleOrHeight, valueName, description);
  add("--red-pin-altitude", options.redAltitude, "METRES", "Of the observer");
  add("--black-pin-altitude", options.blackAltitude, "METRES", "Of the object");
}

int showHeight(const SightOptions& options, Console& console) {
  double toObject = 0;
  const double height = GeodeticCalculator().calculateHeightAboveTerrainWithPin2PinDistance(
      *options.distance, *options.radius, *options.angleOrHeight, *options.redAltitude,
      *options.blackAltitude, toObject);
  return print({{"Height above terrain", "heightAboveTerrain", height, metresText(height)},
                {"Distance to object", "distanceToObject", toObject, metresText(toObject)}},
               console);
}

int showElevation(const SightOptions& options, Console& console) {
  const double elevation = GeodeticCalculator().calculateElevationAboveTerrainWithPin2PinDistance(
      *options.distance, *options.radius, *options.angleOrHeight, *options.redAltitude,
      *options.blackAltitude);
  return print(
      {{"Elevation above terrain", "elevationAboveTerrain", elevation, degreesText(elevation)}},
      console);
}

int showRadius(const Number& latitude, Console& console) {
  const double radius = GeodeticCalculator().calculateEarthRadiusForLatitude(*latitude);
  return print({{"Earth radius", "earthRadius", radius, metresText(radius)}}, console);
}

}  // namespace

void fillGeoCommands(CLI::App& parser, Session& session) {
  parser.require_subcommand(1);
  const auto curve = addCommand(parser, session, "curve",
                                "Azimuths, distance and elevation between two points", &showCurve);
  addCurveOptions(curve.parser, curve.options);
  const auto [radius, latitude] =
      addCommand(parser, session, "radius", "The earth's radius at a latitude", &showRadius);
  addValueOption(radius, "LAT", latitude, &hemisphereLatitudeFromArgument, "",
                 "Degrees, or as 41.39N");
  const auto height = addCommand(
      parser, session, "height",
      "Height above the object's terrain at which the observer sees the sun or moon", &showHeight);
  addSightOptions(height.parser, height.options, "--sun-moon-elevation", "DEGREES",
                  "Of the sun or moon above the horizon");
  const auto elevation = addCommand(
      parser, session, "elevation",
      "Angle at which the observer sees a height above the object's terrain", &showElevation);
  addSightOptions(elevation.parser, elevation.options, "--apparent-height", "METRES",
                  "Above the object's terrain");
}

}  // namespace vantrel::cli
