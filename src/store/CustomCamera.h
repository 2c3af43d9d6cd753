#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "store/IdentifiedObject.h"

namespace vantrel {

class ManagedObjectContext;

/// A custom camera of the main store. Lengths are
/// millimetres; absent sizes count as 0. All arithmetic is in single precision.
class CustomCamera : public IdentifiedObject {
 public:
  /// The name of the entity in the model.
  static constexpr const char* kEntityName = "CustomCamera";

  using Cameras = std::vector<std::shared_ptr<CustomCamera>>;

  /// A new camera without an identifier gets one, and no lens: neither `aperture` nor `focalLength`
  /// nor `isFilm`.
  void awakeFromInsert() override;

  std::optional<std::string> model() const { return textForKey("model"); }
  void setModel(const std::optional<std::string>& model) { setOptionalForKey(model, "model"); }
  std::optional<float> sensorWidth() const { return floatForKey("sensorWidth"); }
  void setSensorWidth(std::optional<float> width) { setOptionalForKey(width, "sensorWidth"); }
  std::optional<float> sensorHeight() const { return floatForKey("sensorHeight"); }
  void setSensorHeight(std::optional<float> height) { setOptionalForKey(height, "sensorHeight"); }
  std::optional<float> megapixels() const { return floatForKey("megapixels"); }
  void setMegapixels(std::optional<float> megapixels) {
    setOptionalForKey(megapixels, "megapixels");
  }
  /// The circle of confusion that the photographer chose.
  std::optional<float> coc() const { return floatForKey("coc"); }
  void setCoc(std::optional<float> coc) { setOptionalForKey(coc, "coc"); }
  std::optional<float> aperture() const { return floatForKey("aperture"); }
  std::optional<float> focalLength() const { return floatForKey("focalLength"); }
  std::optional<bool> isFilm() const;

  float sensorDiagonal() const;
  /// The chosen circle of confusion, even 0; the calculated one when none was chosen.
  float CoC() const;
  /// A 1440th of the diagonal.
  float calculateCocValue() const;
  /// How many times the diagonal fits into that of the 36 mm x 24 mm frame; 0 without a diagonal.
  float cropFactor() const;

  /// All cameras by model; nothing when they cannot be read.
  static std::optional<Cameras> loadCustomCamerasInManagedObjectContext(
      ManagedObjectContext& context);
  /// The first camera of the store's order with just that model; null when there is none.
  static std::shared_ptr<CustomCamera> loadCameraWithModel(const std::string& model,
                                                           ManagedObjectContext& context);
  /// Whether another camera than the given one has its model; never for one without a model.
  static bool existsCameraWithModel(const CustomCamera& camera, ManagedObjectContext& context);

 private:
  std::optional<float> floatForKey(std::string_view key) const;
};

}  // namespace vantrel
