#include "cli/camera/CameraText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>

#include "common/TerminalText.h"

namespace vantrel::cli {

namespace {

using Row = std::vector<std::string>;

std::string numberText(std::optional<float> value) {
  if (!value || !std::isfinite(*value)) return kUnknown;
  std::array<char, 128> text{};
  const auto written =
      std::to_chars(text.data(), text.data() + text.size(), *value, std::chars_format::fixed);
  return {text.data(), written.ptr};
}

std::string withUnit(std::optional<float> value, const char* before, const char* after) {
  const std::string number = numberText(value);
  return number == kUnknown ? number : before + number + after;
}

std::string sizeText(std::optional<float> width, std::optional<float> height) {
  return numberText(width) + " × " + numberText(height) + " mm";
}

Json orNull(std::optional<float> value) {
  return value && std::isfinite(*value) ? Json(decimalOfFloat(*value)) : Json(nullptr);
}

/// Returns a line for each row, with all columns but the last padded to their widest text.
std::string aligned(const std::vector<Row>& rows) {
  std::vector<std::size_t> widths(rows.empty() ? 0 : rows.front().size());
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], cellWidth(row[i]));
  }
  std::string text;
  for (const auto& row : rows) {
    for (std::size_t i = 0; i + 1 < row.size(); ++i) {
      text += paddedToCells(row[i], widths[i]) + "  ";
    }
    text += row.back() + "\n";
  }
  return text;
}

}  // namespace

Json jsonOfCamera(const CustomCamera& camera) {
  return {
      {"uniqueIdentifier", orNull(camera.uniqueIdentifier())},
      {"uri", camera.objectID().URIRepresentation()},
      {"model", orNull(camera.model())},
      {"sensorWidth", orNull(camera.sensorWidth())},
      {"sensorHeight", orNull(camera.sensorHeight())},
      {"megapixels", orNull(camera.megapixels())},
      {"coc", orNull(camera.coc())},
      {"aperture", orNull(camera.aperture())},
      {"focalLength", orNull(camera.focalLength())},
      {"isFilm", orNull(camera.isFilm())},
      {"sensorDiagonal", orNull(std::optional(camera.sensorDiagonal()))},
      {"circleOfConfusion", orNull(std::optional(camera.CoC()))},
      {"cropFactor", orNull(std::optional(camera.cropFactor()))},
  };
}

Json jsonOfSensor(const SensorFormat& sensor) {
  return {{"name", sensor.name},
          {"width", decimalOfFloat(sensor.width)},
          {"height", decimalOfFloat(sensor.height)}};
}

std::string cameraDetails(const CustomCamera& camera, const Console& console) {
  std::string text = console.bold(shown(camera.model())) + "\n";
  const auto line = [&](const char* label, const std::string& value) {
    text += console.labelled(label, value);
  };
  line("Sensor", sizeText(camera.sensorWidth(), camera.sensorHeight()));
  line("Diagonal", withUnit(camera.sensorDiagonal(), "", " mm"));
  line("Circle",
       withUnit(camera.CoC(), "", " mm of confusion, ") + (camera.coc() ? "chosen" : "calculated"));
  line("Crop", numberText(camera.cropFactor()));
  line("Megapixels", numberText(camera.megapixels()));
  line("Aperture", withUnit(camera.aperture(), "f/", ""));
  line("Focal", withUnit(camera.focalLength(), "", " mm"));
  line("Film", camera.isFilm() ? (*camera.isFilm() ? "yes" : "no") : kUnknown);
  line("Identifier", shown(camera.uniqueIdentifier()));
  line("URI", camera.objectID().URIRepresentation());
  return text;
}

std::string cameraTable(const CustomCamera::Cameras& cameras, const Console& console) {
  std::vector<Row> rows;
  for (const auto& camera : cameras) {
    const auto identifier = camera->uniqueIdentifier();
    rows.push_back({shown(camera->model()), sizeText(camera->sensorWidth(), camera->sensorHeight()),
                    withUnit(camera->sensorDiagonal(), "diagonal ", " mm"),
                    withUnit(camera->CoC(), "CoC ", " mm"),
                    withUnit(camera->cropFactor(), "crop ", ""),
                    console.dim(identifier ? shortIdentifier(*identifier)
                                           : camera->objectID().URIRepresentation())});
  }
  return aligned(rows);
}

std::string sensorTable(const std::vector<SensorFormat>& sensors) {
  std::vector<Row> rows;
  rows.reserve(sensors.size());
  for (const auto& sensor : sensors) {
    rows.push_back({printable(sensor.name), sizeText(sensor.width, sensor.height)});
  }
  return aligned(rows);
}

std::string candidateText(const CustomCamera& camera) {
  return shown(camera.uniqueIdentifier()) + "  " + shown(camera.model()) + "  " +
         sizeText(camera.sensorWidth(), camera.sensorHeight());
}

}  // namespace vantrel::cli
