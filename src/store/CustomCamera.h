#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "store/IdentifiedObject.h"

namespace vantrel {

class ManagedObjectContext;

/// A custom camera of the main store. Lengths are millimetres; absent sizes count as 0. All
/// arithmetic is in single precision.
class CustomCamera : public IdentifiedObject {
 public:
  static constexpr const char* kEntityName = "CustomCamera";

  using Cameras = std::vector<std::shared_ptr<CustomCamera>>;

  /// If the camera has no identifier, sets one and clears `aperture`, `focalLength` and `isFilm`.
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
  /// The circle of confusion chosen by the photographer.
  std::optional<float> coc() const { return floatForKey("coc"); }
  void setCoc(std::optional<float> coc) { setOptionalForKey(coc, "coc"); }
  std::optional<float> aperture() const { return floatForKey("aperture"); }
  std::optional<float> focalLength() const { return floatForKey("focalLength"); }
  std::optional<bool> isFilm() const;

  float sensorDiagonal() const;
  /// Returns coc(), even if it is 0; calculateCocValue() if it is absent.
  float CoC() const;
  /// sensorDiagonal() / 1440.
  float calculateCocValue() const;
  /// Diagonal of the 36 mm x 24 mm frame / sensorDiagonal(); 0 if the latter is 0.
  float cropFactor() const;

  /// Returns all cameras ordered by model; `nullopt` if the fetch fails.
  static std::optional<Cameras> loadCustomCamerasInManagedObjectContext(
      ManagedObjectContext& context);
  /// Returns the first camera in the store's order whose model is `model`; null if there is none or
  /// the fetch fails.
  static std::shared_ptr<CustomCamera> loadCameraWithModel(const std::string& model,
                                                           ManagedObjectContext& context);
  /// Whether a camera other than `camera` has its model. False for a camera without a model and if
  /// the fetch fails.
  static bool existsCameraWithModel(const CustomCamera& camera, ManagedObjectContext& context);

 private:
  std::optional<float> floatForKey(std::string_view key) const;
};

}  // namespace vantrel
