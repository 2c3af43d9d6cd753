#pragma once

#include <functional>
#include <optional>
#include <string>

#include "webservice/PlaceRequestOperation.h"

namespace vantrel {

/// Asks Google for the altitude of the ground, or of the bottom of the sea, in metres. Starts
/// without an account: `token` is to be a key of the user's own, for the program's is none of
/// Google's.
class GoogleElevationOperation : public PlaceRequestOperation {
 public:
  using Found = std::function<void(std::optional<float> altitude)>;

  /// `found` hears what was found, on the main queue.
  GoogleElevationOperation(LocationCoordinate2D place, Found found);

  std::string urlString() const override;
  void processResponseWithResult(const JsonAnswer& result) override;

 private:
  Found found_;
};

}  // namespace vantrel
