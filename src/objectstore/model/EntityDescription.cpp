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

bool EntityDescription::isKindOf(const EntityDescription& ancestor) const {
  const EntityDescription* entity = this;
  while (entity && entity != &ancestor) entity = entity->superentity;
  return entity != nullptr;
}

std::size_t EntityDescription::slotCount() const {
  const auto toOnes =
      std::count_if(relationships.begin(), relationships.end(),
                    [](const auto& relationship) { return !relationship.isToMany; });
  return attributes.size() + static_cast<std::size_t>(toOnes);
}

std::optional<std::size_t> EntityDescription::slotOfAttribute(std::string_view key) const {
  const AttributeDescription* found = attribute(key);
  return found ? std::optional(static_cast<std::size_t>(found - attributes.data())) : std::nullopt;
}

std::optional<std::size_t> EntityDescription::slotOfToOne(std::string_view key) const {
  std::size_t slot = attributes.size();
  for (const auto& relationship : relationships) {
    if (relationship.isToMany) continue;
    if (relationship.name == key) return slot;
    ++slot;
  }
  return std::nullopt;
}

const RelationshipDescription& EntityDescription::toOneInSlot(std::size_t slot) const {
  return *std::find_if(relationships.begin(), relationships.end(), [&](const auto& relationship) {
    return slotOfToOne(relationship.name) == slot;
  });
}

}  // namespace vantrel
