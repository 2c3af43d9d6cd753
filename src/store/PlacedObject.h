#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "store/IdentifiedObject.h"

namespace vantrel {

/// A record of a place, with a name and pictures. Getters return `nullopt` for absent attributes;
/// setting `nullopt` clears them.
class PlacedObject : public IdentifiedObject {
 public:
  std::optional<std::string> name() const { return textForKey("name"); }
  void setName(const std::optional<std::string>& name) { setOptionalForKey(name, "name"); }
  /// Degrees.
  std::optional<double> latitude() const { return numberForKey("latitude"); }
  void setLatitude(std::optional<double> latitude) { setOptionalForKey(latitude, "latitude"); }
  std::optional<double> longitude() const { return numberForKey("longitude"); }
  void setLongitude(std::optional<double> longitude) { setOptionalForKey(longitude, "longitude"); }
  /// The attached pictures, in the order of their keys; empty if the store cannot be read.
  std::vector<std::shared_ptr<ManagedObject>> images() const { return relatedObjects("images"); }
  std::size_t imageCount() const { return countOfRelatedObjects("images"); }
};

}  // namespace vantrel
