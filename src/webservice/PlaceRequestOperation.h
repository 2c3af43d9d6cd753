#pragma once

#include <optional>
#include <string>

#include "base/LocationCoordinate2D.h"
#include "webservice/WebServiceRequestOperation.h"

namespace vantrel {

/// Base of requests about one place.
class PlaceRequestOperation : public WebServiceRequestOperation {
 public:
  /// Scheme and host of the service, without a trailing slash; replaces the default.
  void setServiceAddress(std::string address) { serviceAddress_ = std::move(address); }
  const std::string& serviceAddress() const { return serviceAddress_; }

  /// Returns `number` if it is a possible altitude, otherwise `nullopt`: the services return
  /// numbers such as -32768 for unknown ones.
  static std::optional<float> altitudeFromNumber(std::optional<double> number);

 protected:
  /// Latitude from -90 to 90, longitude from -180 to 180.
  PlaceRequestOperation(std::string serviceAddress, LocationCoordinate2D place)
      : serviceAddress_(std::move(serviceAddress)), place_(place) {}

  static constexpr const char* kGeoNamesAddress = "https://secure.geonames.org";
  static constexpr const char* kGoogleAddress = "https://maps.googleapis.com";

  /// Returns the URL of a GeoNames service with the place and the account.
  std::string geoNamesUrl(const std::string& service) const;
  /// Degrees with six decimals, about 0.1 m: requests for nearly equal places share a cached
  /// answer.
  std::string latitude() const;
  std::string longitude() const;
  /// Returns "&name=value", or "" if `value` is empty.
  static std::string parameter(const std::string& name, const std::string& value);

 private:
  std::string serviceAddress_;
  LocationCoordinate2D place_;
};

}  // namespace vantrel
