#pragma once

#include <functional>
#include <optional>
#include <string>

#include "webservice/PlaceRequestOperation.h"

namespace vantrel {

/// Asks GeoNames for the altitude of the ground, in metres, as the shuttle's radar measured it.
/// Nothing is found on the sea and beyond the 60th degrees of latitude.
class GeoNamesElevationOperation : public PlaceRequestOperation {
 public:
  using Found = std::function<void(std::optional<float> altitude)>;

  /// `found` hears what was found, on the main queue.
  GeoNamesElevationOperation(LocationCoordinate2D place, Found found);

  std::string urlString() const override;
  std::string getCheckDataKey() const override { return "srtm3"; }
  void processResponseWithResult(const JsonAnswer& result) override;

 private:
  Found found_;
};

}  // namespace vantrel
