#include "store/CustomCamera.h"

#include <algorithm>
#include <cmath>

#include "objectstore/ManagedObjectContext.h"

namespace vantrel {

namespace {

/// Diagonal of the 36 mm x 24 mm frame, rounded to single precision.
constexpr float kFullFrameDiagonal = 43.266617F;
constexpr float kCirclesPerDiagonal = 1440;

std::optional<CustomCamera::Cameras> fetchCameras(ManagedObjectContext& context,
                                                  const FetchRequest& request) {
  const auto objects = context.executeFetchRequest(request);
  if (!objects) return std::nullopt;
  CustomCamera::Cameras cameras;
  for (const auto& object : *objects) {
    if (auto camera = std::dynamic_pointer_cast<CustomCamera>(object)) {
      cameras.push_back(std::move(camera));
    }
  }
  return cameras;
}

FetchRequest requestForModel(const std::string& model) {
  return {.entityName = CustomCamera::kEntityName, .predicate = Predicate::equal("model", model)};
}

}  // namespace

void CustomCamera::awakeFromInsert() {
  const bool isNew = !uniqueIdentifier();
  IdentifiedObject::awakeFromInsert();
  if (!isNew) return;
  for (const char* key : {"aperture", "focalLength", "isFilm"}) setValueForKey({}, key);
}

std::optional<float> CustomCamera::floatForKey(std::string_view key) const {
  const auto number = numberForKey(key);
  return number ? std::optional(static_cast<float>(*number)) : std::nullopt;
}

std::optional<bool> CustomCamera::isFilm() const {
  const Value value = valueForKey("isFilm");
  const auto* number = std::get_if<std::int64_t>(&value);
  return number ? std::optional(*number != 0) : std::nullopt;
}

float CustomCamera::sensorDiagonal() const {
  const float width = sensorWidth().value_or(0);
  const float height = sensorHeight().value_or(0);
  return std::sqrt(width * width + height * height);
}

float CustomCamera::calculateCocValue() const {
  return sensorDiagonal() / kCirclesPerDiagonal;
}

float CustomCamera::CoC() const {
  return coc().value_or(calculateCocValue());
}

float CustomCamera::cropFactor() const {
  const float diagonal = sensorDiagonal();
  return diagonal == 0 ? 0 : kFullFrameDiagonal / diagonal;
}

std::optional<CustomCamera::Cameras> CustomCamera::loadCustomCamerasInManagedObjectContext(
    ManagedObjectContext& context) {
  return fetchCameras(context,
                      {.entityName = CustomCamera::kEntityName, .sortDescriptors = {{"model"}}});
}

std::shared_ptr<CustomCamera> CustomCamera::loadCameraWithModel(const std::string& model,
                                                                ManagedObjectContext& context) {
  const auto cameras = fetchCameras(context, requestForModel(model));
  return cameras && !cameras->empty() ? cameras->front() : nullptr;
}

bool CustomCamera::existsCameraWithModel(const CustomCamera& camera,
                                         ManagedObjectContext& context) {
  const auto model = camera.model();
  if (!model) return false;
  const auto cameras = fetchCameras(context, requestForModel(*model));
  return cameras && std::any_of(cameras->begin(), cameras->end(), [&](const auto& other) {
           return other.get() != &camera && other->model() == model;
         });
}

}  // namespace vantrel
