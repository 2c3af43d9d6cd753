#pragma once

#include <string>
#include <vector>

#include "cli/Console.h"
#include "cli/JsonText.h"
#include "cli/camera/SensorFormats.h"
#include "store/CustomCamera.h"

namespace vantrel::cli {

/// Cameras and sensors as text and JSON. Numbers are the shortest that single precision reads back,
/// lengths millimetres. Texts are safe for a terminal.

Json jsonOfCamera(const CustomCamera& camera);
Json jsonOfSensor(const SensorFormat& sensor);

/// Returns all values of a camera, one a line.
std::string cameraDetails(const CustomCamera& camera, const Console& console);

/// Returns one line for each camera, in columns: model, sensor, diagonal, circle of confusion, crop
/// factor, identifier (without one, the URI).
std::string cameraTable(const CustomCamera::Cameras& cameras, const Console& console);

/// Returns one line for each sensor, in columns: name, size.
std::string sensorTable(const std::vector<SensorFormat>& sensors);

/// Returns one line that distinguishes cameras of the same model.
std::string candidateText(const CustomCamera& camera);

}  // namespace vantrel::cli
