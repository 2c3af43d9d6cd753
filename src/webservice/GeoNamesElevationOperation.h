#pragma once

#include <functional>
#include <optional>
#include <string>

#include "webservice/PlaceRequestOperation.h"

namespace vantrel {

/// Requests the altitude of the ground in metres from GeoNames (SRTM data). The sea and latitudes
/// beyond 60 degrees have none.
class GeoNamesElevationOperation : public PlaceRequestOperation {
 public:
  using Completion = std::function<void(std::optional<float> altitude)>;

  /// Calls `completion` on the main queue, with `nullopt` if GeoNames has no altitude.
  GeoNamesElevationOperation(LocationCoordinate2D place, Completion completion)
      : PlaceRequestOperation(kGeoNamesAddress, place), completion_(std::move(completion)) {}

  std::string urlString() const override { return geoNamesUrl("srtm3JSON"); }
  std::string getCheckDataKey() const override { return "srtm3"; }
  void processResponseWithResult(const JsonAnswer& result) override {
    completion_(altitudeFromNumber(result[getCheckDataKey()].asNumber()));
  }

 private:
  Completion completion_;
};

}  // namespace vantrel
