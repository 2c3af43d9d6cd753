#include "cli/camera/CameraSelection.h"

#include <vector>

#include "cli/Suggestion.h"
#include "cli/camera/CameraText.h"
#include "common/ExitCode.h"

namespace vantrel::cli {

namespace {

constexpr std::size_t kShortestPrefix = 4;

/// The ways of naming a camera, the strictest first.
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
      return text.size() >= kShortestPrefix &&
             folded(camera.uniqueIdentifier().value_or("")).starts_with(folded(text));
    },
};

std::vector<std::string> candidateLines(const CustomCamera::Cameras& cameras) {
  std::vector<std::string> lines;
  for (const auto& camera : cameras) lines.push_back(candidateText(*camera));
  return lines;
}

}  // namespace

Expected<CustomCamera::Cameras> allCameras(ManagedObjectContext& context) {
  if (auto cameras = CustomCamera::loadCustomCamerasInManagedObjectContext(context)) {
    return *std::move(cameras);
  }
  return tl::unexpected(failure(kExitInputOutput, "cameras", "they cannot be read"));
}

Expected<std::shared_ptr<CustomCamera>> cameraNamed(ManagedObjectContext& context,
                                                    const std::string& text) {
  const auto cameras = allCameras(context);
  if (!cameras) return tl::unexpected(cameras.error());
  for (const auto matches : kWays) {
    CustomCamera::Cameras found;
    for (const auto& camera : *cameras) {
      if (matches(*camera, text)) found.push_back(camera);
    }
    if (found.size() == 1) return found.front();
    if (found.empty()) continue;
    return tl::unexpected(ambiguous(
        text, "more than one camera; name one of these by its identifier", candidateLines(found)));
  }
  std::vector<std::string> models;
  for (const auto& camera : *cameras) models.push_back(camera->model().value_or(""));
  const auto nearest = nearestWord(text, models);
  return tl::unexpected(failure(kExitMissing, text,
                                "no such camera; " + (nearest ? "did you mean \"" + *nearest + "\"?"
                                                              : "see vantrel camera list")));
}

}  // namespace vantrel::cli
