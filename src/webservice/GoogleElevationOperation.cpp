#include "webservice/GoogleElevationOperation.h"

#include <utility>

namespace vantrel {

GoogleElevationOperation::GoogleElevationOperation(LocationCoordinate2D place, Found found)
    : PlaceRequestOperation(kGoogleAddress, place), found_(std::move(found)) {
  setServerType(kGoogle);
  setUsername("");
  setToken("");
}

std::string GoogleElevationOperation::urlString() const {
  return serviceAddress() + "/maps/api/elevation/json?locations=" + latitude() + "," + longitude() +
         parameter("key", token());
}

void GoogleElevationOperation::processResponseWithResult(const JsonAnswer& result) {
  found_(altitudeFromNumber(result["elevation"].asNumber()));
}

}  // namespace vantrel
