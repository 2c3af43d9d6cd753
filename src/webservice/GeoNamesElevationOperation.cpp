#include "webservice/GeoNamesElevationOperation.h"

#include <utility>

namespace vantrel {

GeoNamesElevationOperation::GeoNamesElevationOperation(LocationCoordinate2D place, Found found)
    : PlaceRequestOperation(kGeoNamesAddress, place), found_(std::move(found)) {}

std::string GeoNamesElevationOperation::urlString() const {
  return geoNamesUrl("srtm3JSON");
}

void GeoNamesElevationOperation::processResponseWithResult(const JsonAnswer& result) {
  found_(altitudeFromNumber(result[getCheckDataKey()].asNumber()));
}

}  // namespace vantrel
