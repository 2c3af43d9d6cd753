#pragma once

#include <functional>
#include <optional>
#include <string>

#include "webservice/PlaceRequestOperation.h"

namespace vantrel {

/// Asks GeoNames in which time zone a place lies. The name is the service's, unchecked.
class GeoNamesTimeZoneOperation : public PlaceRequestOperation {
 public:
  using Found = std::function<void(std::optional<std::string> name)>;

  /// `found` hears what was found, on the main queue.
  GeoNamesTimeZoneOperation(LocationCoordinate2D place, Found found);

  std::string urlString() const override;
  std::string getCheckDataKey() const override { return "timezoneId"; }
  void processResponseWithResult(const JsonAnswer& result) override;

 private:
  Found found_;
};

}  // namespace vantrel
