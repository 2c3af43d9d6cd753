#pragma once

#include <optional>
#include <string>

#include "base/LocationCoordinate2D.h"
#include "webservice/WebServiceRequestOperation.h"

namespace vantrel {

/// A request about one place.
class PlaceRequestOperation : public WebServiceRequestOperation {
 public:
  /// Scheme and host to ask instead of the service's own, without a slash at the end.
  void setServiceAddress(std::string address) { serviceAddress_ = std::move(address); }
  const std::string& serviceAddress() const { return serviceAddress_; }

  /// Metres, when that is a height on Earth; services mark what they do not know by others.
  static std::optional<float> altitudeFromNumber(std::optional<double> number);

 protected:
  /// Latitude from -90 to 90, longitude from -180 to 180.
  PlaceRequestOperation(std::string serviceAddress, LocationCoordinate2D place)
      : serviceAddress_(std::move(serviceAddress)), place_(place) {}

  static constexpr const char* kGeoNamesAddress = "https://secure.geonames.org";
  static constexpr const char* kGoogleAddress = "https://maps.googleapis.com";

  /// The place and the account put to one of GeoNames' services.
  std::string geoNamesUrl(const std::string& service) const;
  /// Degrees as URLs have them, to a tenth of a metre: who asks again for a place finds it cached.
  std::string latitude() const;
  std::string longitude() const;
  /// "&name=value", or nothing for an empty value.
  static std::string parameter(const std::string& name, const std::string& value);

 private:
  std::string serviceAddress_;
  LocationCoordinate2D place_;
};

}  // namespace vantrel
