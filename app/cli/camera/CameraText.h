#pragma once

#include <string>
#include <vector>

#include "cli/Console.h"
#include "cli/JsonText.h"
#include "cli/camera/SensorFormats.h"
#include "store/CustomCamera.h"

namespace vantrel::cli {

/// Cameras as people and programs read them; numbers are the shortest that single precision reads
/// back, lengths millimetres. Texts are safe for a terminal.

Json jsonOfCamera(const CustomCamera& camera);
Json jsonOfSensor(const SensorFormat& sensor);

/// One camera with everything that is known of it, one line each.
std::string cameraDetails(const CustomCamera& camera, const Console& console);

/// One line for each camera, in columns: model, sensor, diagonal, circle of confusion, crop factor,
/// identifier.
std::string cameraTable(const CustomCamera::Cameras& cameras, const Console& console);

/// One line for each sensor, in columns: name, size.
std::string sensorTable(const std::vector<SensorFormat>& sensors);

/// One line that tells cameras of the same model apart.
std::string candidateText(const CustomCamera& camera);

}  // namespace vantrel::cli
