#include "objectstore/model/EntityDescription.h"

#include <algorithm>

namespace vantrel {

namespace {

template <typename Property>
const Property* propertyNamed(const std::vector<Property>& properties, std::string_view name) {
  const auto found = std::lower_bound(
      properties.begin(), properties.end(), name,
      [](const Property& property, std::string_view wanted) { return property.name < wanted; });
  return found != properties.end() && found->name == name ? &*found : nullptr;
}

}  // namespace

const AttributeDescription* EntityDescription::attribute(std::string_view key) const {
  return propertyNamed(attributes, key);
}

const RelationshipDescription* EntityDescription::relationship(std::string_view key) const {
  return propertyNamed(relationships, key);
}

}  // namespace vantrel
