#include "webservice/PlaceRequestOperation.h"

#include "base/PercentEncoding.h"
#include "base/StringFormat.h"

namespace vantrel {

namespace {

std::string degrees(double value) {
  constexpr int kDecimals = 6;
  return decimalText(value, kDecimals);
}

}  // namespace

std::optional<float> PlaceRequestOperation::altitudeFromNumber(std::optional<double> number) {
  constexpr double kLowest = -12000;
  constexpr double kHighest = 9000;
  if (!number || !(*number >= kLowest && *number <= kHighest)) return std::nullopt;
  return static_cast<float>(*number);
}

std::string PlaceRequestOperation::geoNamesUrl(const std::string& service) const {
  return serviceAddress_ + "/" + service + "?lat=" + latitude() + "&lng=" + longitude() +
         parameter("username", username()) + parameter("token", token());
}

std::string PlaceRequestOperation::latitude() const {
  return degrees(place_.latitude);
}

std::string PlaceRequestOperation::longitude() const {
  return degrees(place_.longitude);
}

std::string PlaceRequestOperation::parameter(const std::string& name, const std::string& value) {
  if (value.empty()) return "";
  return "&" + name + "=" + percentEncoded(value, kUrlUnreservedCharacterSet);
}

}  // namespace vantrel
