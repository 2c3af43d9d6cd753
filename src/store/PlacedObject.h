#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "store/IdentifiedObject.h"

namespace vantrel {

/// What records of a place share: its name, where it is, and pictures. Absent attributes are
/// nothing; setting nothing clears them.
class PlacedObject : public IdentifiedObject {
 public:
  std::optional<std::string> name() const { return textForKey("name"); }
  void setName(const std::optional<std::string>& name) { setOptionalForKey(name, "name"); }
  /// Degrees; absent reads as nothing, which the duplicate rule takes for 0.
  std::optional<double> latitude() const { return numberForKey("latitude"); }
  void setLatitude(std::optional<double> latitude) { setOptionalForKey(latitude, "latitude"); }
  std::optional<double> longitude() const { return numberForKey("longitude"); }
  void setLongitude(std::optional<double> longitude) { setOptionalForKey(longitude, "longitude"); }
  /// How many pictures are attached.
  std::size_t imageCount() const { return countOfRelatedObjects("images"); }
};

}  // namespace vantrel
