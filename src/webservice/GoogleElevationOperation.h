#pragma once

#include <functional>
#include <optional>
#include <string>

#include "webservice/PlaceRequestOperation.h"

namespace vantrel {

/// Requests the altitude of the ground, or of the sea floor, in metres from Google. Has no account
/// by default: set `token` to the user's own key.
class GoogleElevationOperation : public PlaceRequestOperation {
 public:
  using Completion = std::function<void(std::optional<float> altitude)>;

  /// Calls `completion` on the main queue, with `nullopt` if the answer has no valid altitude.
  GoogleElevationOperation(LocationCoordinate2D place, Completion completion)
      : PlaceRequestOperation(kGoogleAddress, place), completion_(std::move(completion)) {
    setServerType(kGoogle);
    setUsername("");
    setToken("");
  }

  std::string urlString() const override {
    return serviceAddress() + "/maps/api/elevation/json?locations=" + latitude() + "," +
           longitude() + parameter("key", token());
  }
  void processResponseWithResult(const JsonAnswer& result) override {
    completion_(altitudeFromNumber(result["elevation"].asNumber()));
  }

 private:
  Completion completion_;
};

}  // namespace vantrel
