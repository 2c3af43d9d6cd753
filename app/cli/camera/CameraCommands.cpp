#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/Arguments.h"
#include "cli/Command.h"
#include "cli/Suggestion.h"
#include "cli/camera/CameraText.h"
#include "cli/camera/SensorFormats.h"
#include "common/ExitCode.h"
#include "common/StoreAccess.h"
#include "store/CustomCamera.h"

namespace vantrel::cli {

namespace {

/// The options of `camera add`.
struct NewCamera {
  std::optional<std::string> model;
  std::optional<std::string> sensor;
  std::optional<float> width;
  std::optional<float> height;
  std::optional<float> megapixels;
  std::optional<float> coc;
  std::optional<float> aperture;
  std::optional<float> focalLength;
  bool isFilm = false;
};

Expected<float> positiveFromArgument(const std::string& option, const std::string& text) {
  // Larger than any sensor or focal length; the diagonal cannot overflow.
  constexpr float kMost = 100'000;
  auto number = floatFromArgument(option, text);
  if (number && *number > 0 && *number <= kMost) return number;
  return invalidArgument(option, text, "a number above 0, up to 100000");
}

/// A circle of confusion of 0 is valid.
Expected<float> circleFromArgument(const std::string& option, const std::string& text) {
  const auto number = floatFromArgument(option, text);
  return number && *number == 0 ? Expected<float>(0.0F) : positiveFromArgument(option, text);
}

/// Returns the format named by --sensor, otherwise that of --width and --height.
Expected<SensorFormat> sensorOf(const NewCamera& given) {
  if (given.sensor) return sensorNamed("--sensor", *given.sensor);
  if (given.width && given.height) return SensorFormat{"", *given.width, *given.height};
  return tl::unexpected(
      failure(kExitUsage, "camera add", "give --sensor, or --width and --height"));
}

Expected<void> apply(const NewCamera& given, const SensorFormat& sensor, CustomCamera& camera) {
  const std::pair<const char*, std::optional<float>> numbers[] = {
      {"sensorWidth", sensor.width},    {"sensorHeight", sensor.height},
      {"megapixels", given.megapixels}, {"coc", given.coc},
      {"aperture", given.aperture},     {"focalLength", given.focalLength},
  };
  const auto set = [&](const Value& value, const char* key) -> Expected<void> {
    if (camera.setValueForKey(value, key)) return {};
    return tl::unexpected(failure(kExitBadData, key, "this store has no such attribute"));
  };
  auto done = set(*given.model, "model");
  for (const auto& [key, number] : numbers) {
    if (done && number) done = set(double{*number}, key);
  }
  if (done && given.isFilm) done = set(std::int64_t{1}, "isFilm");
  return done;
}

int addCamera(const NewCamera& given, Console& console) {
  const auto sensor = sensorOf(given);
  if (!sensor) return console.fail(sensor.error());
  const auto context = contextForWriting();
  if (!context) return console.fail(context.error());
  const auto camera = std::dynamic_pointer_cast<CustomCamera>(
      (*context)->insertNewObject(CustomCamera::kEntityName));
  if (!camera)
    return console.fail(failure(kExitInternal, "camera add", "the model has no cameras"));
  if (const auto done = apply(given, *sensor, *camera); !done) return console.fail(done.error());
  if (CustomCamera::existsCameraWithModel(*camera, **context)) {
    return console.fail(failure(kExitUsage, *given.model,
                                "another camera has this model name; choose a different one, or "
                                "remove it with vantrel camera remove"));
  }
  if (const auto saved = (*context)->save(); !saved) return console.fail(saved.error());
  if (console.isJson()) console.print(jsonText(jsonOfCamera(*camera)));
  return kExitDone;
}

Expected<CustomCamera::Cameras> allCameras(ManagedObjectContext& context) {
  if (auto cameras = CustomCamera::loadCustomCamerasInManagedObjectContext(context)) {
    return *std::move(cameras);
  }
  return tl::unexpected(failure(kExitInputOutput, "cameras", "cannot be read"));
}

int listCameras(Console& console) {
  const auto context = contextForReading();
  if (!context) return console.fail(context.error());
  const auto cameras = allCameras(**context);
  if (!cameras) return console.fail(cameras.error());
  if (cameras->empty()) console.note("no cameras");
  if (!console.isJson()) {
    console.print(cameraTable(*cameras, console));
    return kExitDone;
  }
  Json list = Json::array();
  for (const auto& camera : *cameras) list.push_back(jsonOfCamera(*camera));
  console.print(jsonText(Json{{"cameras", std::move(list)}}));
  return kExitDone;
}

int listSensors(Console& console) {
  const auto sensors = sensorFormats();
  if (!sensors) return console.fail(sensors.error());
  if (!console.isJson()) {
    console.print(sensorTable(*sensors));
    return kExitDone;
  }
  Json list = Json::array();
  for (const auto& sensor : *sensors) list.push_back(jsonOfSensor(sensor));
  console.print(jsonText(Json{{"sensors", std::move(list)}}));
  return kExitDone;
}

/// The ways to select a camera, the strictest first.
using Matches = bool (*)(const CustomCamera& camera, const std::string& text);
constexpr Matches kWays[] = {
    [](const CustomCamera& camera, const std::string& text) { return camera.model() == text; },
    [](const CustomCamera& camera, const std::string& text) {
      return camera.objectID().URIRepresentation() == text;
    },
    [](const CustomCamera& camera, const std::string& text) {
      return !folded(text).empty() && folded(camera.model().value_or("")) == folded(text);
    },
    [](const CustomCamera& camera, const std::string& text) {
      constexpr std::size_t kShortestPrefix = 4;
      return text.size() >= kShortestPrefix &&
             folded(camera.uniqueIdentifier().value_or("")).starts_with(folded(text));
    },
};

/// Errors: kExitMissing if no camera matches; kExitUsage, with the candidates, if several do.
Expected<std::shared_ptr<CustomCamera>> selectCamera(const CustomCamera::Cameras& cameras,
                                                     const std::string& text) {
  for (const auto matches : kWays) {
    CustomCamera::Cameras found;
    std::vector<std::string> lines;
    for (const auto& camera : cameras) {
      if (!matches(*camera, text)) continue;
      found.push_back(camera);
      lines.push_back(candidateText(*camera));
    }
    if (found.size() == 1) return found.front();
    if (found.empty()) continue;
    return tl::unexpected(
        ambiguous(text, "more than one camera; name one of these by its identifier", lines));
  }
  std::vector<std::string> models;
  for (const auto& camera : cameras) models.push_back(camera->model().value_or(""));
  const auto nearest = nearestWord(text, models);
  return tl::unexpected(
      failure(kExitMissing, text,
              "camera not found; " +
                  (nearest ? "did you mean \"" + *nearest + "\"?" : "see vantrel camera list")));
}

using CameraName = std::optional<std::string>;

Expected<std::shared_ptr<CustomCamera>> storedCamera(const CameraName& name) {
  return contextForReading()
      .and_then([](auto* context) { return allCameras(*context); })
      .and_then([&](const auto& cameras) { return selectCamera(cameras, *name); });
}

int showCamera(const CameraName& name, Console& console) {
  const auto camera = storedCamera(name);
  if (!camera) return console.fail(camera.error());
  console.print(console.isJson() ? jsonText(jsonOfCamera(**camera))
                                 : cameraDetails(**camera, console));
  return kExitDone;
}

int removeCamera(const CameraName& name, Console& console) {
  const auto removed = storedCamera(name).and_then(removeFromStore);
  return removed ? kExitDone : console.fail(removed.error());
}

void addAttributes(CLI::App& parser, NewCamera& given) {
  addValueOption(parser, "MODEL", given.model, &filledTextFromArgument, "", "Name of the model");
  const auto number = [&](const char* name, std::optional<float>& target, const char* unit,
                          const char* description) {
    return addValueOption(parser, name, target, &positiveFromArgument, unit, description);
  };
  addTextOption(parser, "--sensor", given.sensor, "NAME",
                "Size of a common sensor, as aps-c: see vantrel camera sensors");
  auto* sensor = parser.get_option("--sensor");
  sensor->excludes(number("--width", given.width, "MM", "Width of the sensor or film frame"));
  sensor->excludes(number("--height", given.height, "MM", "Height of the sensor or film frame"));
  number("--megapixels", given.megapixels, "COUNT", "Resolution");
  addValueOption(parser, "--coc", given.coc, &circleFromArgument, "MM",
                 "Circle of confusion; without it, 1/1440 of the diagonal");
  number("--aperture", given.aperture, "F", "Aperture of the lens, as 2.8");
  number("--focal-length", given.focalLength, "MM", "Focal length of the lens");
  parser.add_flag("--film", given.isFilm, "Takes film");
}

void addCameraName(CLI::App& parser, CameraName& name) {
  addValueOption(parser, "CAMERA", name, &filledTextFromArgument, "",
                 "Model, identifier, its first characters (at least four), or URI");
}

}  // namespace

void fillCameraCommands(CLI::App& parser, Session& session) {
  parser.require_subcommand(1);
  const auto add =
      addCommand(parser, session, "add", "Add a camera by the size of its sensor", &addCamera);
  addAttributes(add.parser, add.options);
  addCommand(parser, session, "list",
             "List cameras with diagonal, circle of confusion and crop factor", &listCameras);
  const auto show = addCommand(parser, session, "show", "Show all values of a camera", &showCamera);
  addCameraName(show.parser, show.options);
  const auto remove = addCommand(parser, session, "remove", "Remove a camera", &removeCamera);
  addCameraName(remove.parser, remove.options);
  addCommand(parser, session, "sensors", "List common sensors and film frames", &listSensors);
}

}  // namespace vantrel::cli
