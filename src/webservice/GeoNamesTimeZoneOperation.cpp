#include "webservice/GeoNamesTimeZoneOperation.h"

#include <utility>

namespace vantrel {

GeoNamesTimeZoneOperation::GeoNamesTimeZoneOperation(LocationCoordinate2D place, Found found)
    : PlaceRequestOperation(kGeoNamesAddress, place), found_(std::move(found)) {}

std::string GeoNamesTimeZoneOperation::urlString() const {
  return geoNamesUrl("timezoneJSON");
}

void GeoNamesTimeZoneOperation::processResponseWithResult(const JsonAnswer& result) {
  found_(result[getCheckDataKey()].asString());
}

}  // namespace vantrel
