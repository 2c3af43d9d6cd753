#pragma once

#include <functional>
#include <optional>
#include <string>

#include "webservice/PlaceRequestOperation.h"

namespace vantrel {

/// Requests the name of a place's time zone from GeoNames.
class GeoNamesTimeZoneOperation : public PlaceRequestOperation {
 public:
  using Completion = std::function<void(std::optional<std::string> name)>;

  /// Calls `completion` on the main queue, with the name as received, which may not be a known
  /// zone, or `nullopt` if it is not a string.
  GeoNamesTimeZoneOperation(LocationCoordinate2D place, Completion completion)
      : PlaceRequestOperation(kGeoNamesAddress, place), completion_(std::move(completion)) {}

  std::string urlString() const override { return geoNamesUrl("timezoneJSON"); }
  std::string getCheckDataKey() const override { return "timezoneId"; }
  void processResponseWithResult(const JsonAnswer& result) override {
    completion_(result[getCheckDataKey()].asString());
  }

 private:
  Completion completion_;
};

}  // namespace vantrel
