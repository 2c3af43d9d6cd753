#include "objectstore/model/ModelDecoding.h"

#include <algorithm>
#include <map>
#include <optional>

#include "base/Ascii.h"

namespace vantrel {

namespace {

using Node = KeyedUnarchiver::Node;

/// Far deeper than any real model.
constexpr std::size_t kMaxAncestors = 64;
constexpr std::int32_t kExternalStorageFlag = 4;

tl::unexpected<Error> damaged(const std::string& why) {
  return tl::unexpected(Error{"ManagedObjectModel", 1, "The model is damaged: " + why, {}});
}

std::string name(const Node& object, std::string_view key) {
  return object.decodeObjectForKey(key).string().value_or("");
}

std::optional<AttributeType> attributeType(std::int32_t number) {
  const auto type = static_cast<AttributeType>(number);
  switch (type) {
    case AttributeType::kInteger16:
    case AttributeType::kInteger32:
    case AttributeType::kInteger64:
    case AttributeType::kDecimal:
    case AttributeType::kDouble:
    case AttributeType::kFloat:
    case AttributeType::kString:
    case AttributeType::kBoolean:
    case AttributeType::kDate:
    case AttributeType::kBinary:
    case AttributeType::kUuid:
    case AttributeType::kUri:
    case AttributeType::kTransformable:
      return type;
  }
  return std::nullopt;
}

template <typename T>
Value valueOf(std::optional<T> value) {
  return value ? Value(std::move(*value)) : Value();
}

Value numberOf(const PropertyList& value, AttributeType type) {
  std::optional<std::int64_t> whole = value.asInteger();
  if (const auto flag = value.asBoolean()) whole = *flag ? 1 : 0;
  std::optional<double> real = value.asReal();
  if (whole && !real) real = static_cast<double>(*whole);
  switch (type) {
    case AttributeType::kDouble:
    case AttributeType::kDecimal:
      return valueOf(real);
    case AttributeType::kFloat:
      return real ? Value(static_cast<double>(static_cast<float>(*real))) : Value();
    default:
      return valueOf(whole);
  }
}

Value defaultValue(const Node& object, AttributeType type) {
  switch (type) {
    case AttributeType::kString:
    case AttributeType::kUri:
      return valueOf(object.string());
    case AttributeType::kDate:
      return valueOf(object.date());
    case AttributeType::kBinary:
      return valueOf(object.data());
    case AttributeType::kUuid:
      return valueOf(object.uuid());
    case AttributeType::kTransformable:
      return {};
    default:
      return numberOf(object.value(), type);
  }
}

/// `nullopt` for a type that is not stored in a column (undefined, object identifier, composite).
std::optional<AttributeDescription> decodedAttribute(const Node& object) {
  const auto type = attributeType(object.decodeInt32ForKey("NSAttributeType"));
  if (!type) return std::nullopt;
  AttributeDescription attribute;
  attribute.name = name(object, "NSPropertyName");
  attribute.type = *type;
  attribute.isOptional = object.decodeBoolForKey("NSIsOptional");
  attribute.isTransient = object.decodeBoolForKey("NSIsTransient");
  attribute.storesExternally = (object.decodeInt32ForKey("NSFlagsKey") & kExternalStorageFlag) != 0;
  attribute.defaultValue = defaultValue(object.decodeObjectForKey("NSDefaultValue"), *type);
  return attribute;
}

RelationshipDescription decodedRelationship(const Node& object) {
  RelationshipDescription relationship;
  relationship.name = name(object, "NSPropertyName");
  relationship.destinationEntityName = name(object, "_NSDestinationEntityName");
  relationship.inverseName = name(object, "_NSInverseRelationshipName");
  relationship.isToMany = object.decodeInt64ForKey("NSMaxCount") != 1;
  relationship.isOrdered = object.decodeBoolForKey("NSIsOrdered");
  relationship.isTransient = object.decodeBoolForKey("NSIsTransient");
  const auto rule = object.decodeInt32ForKey("NSDeleteRule");
  if (rule >= 0 && rule <= 3) relationship.deleteRule = static_cast<DeleteRule>(rule);
  return relationship;
}

void addIndexes(const Node& entity, EntityDescription& description) {
  auto& indexed = description.indexedAttributes;
  for (const auto& index : entity.decodeObjectForKey("NSFetchIndexDescriptions").array()) {
    for (const auto& element : index.decodeObjectForKey("NSIndexElements").array()) {
      auto attribute = name(element, "NSPropertyName");
      if (std::find(indexed.begin(), indexed.end(), attribute) == indexed.end()) {
        indexed.push_back(std::move(attribute));
      }
    }
  }
}

EntityDescription decodedEntity(const Node& object) {
  EntityDescription entity;
  entity.name = name(object, "NSEntityName");
  entity.superentityName = name(object.decodeObjectForKey("NSSuperentity"), "NSEntityName");
  entity.isAbstract = object.decodeBoolForKey("NSIsAbstract");
  for (const auto& [key, property] : object.decodeObjectForKey("NSProperties").dictionary()) {
    const auto kind = property.className();
    // Skip fetched properties, which are not stored, and placeholders for inherited properties.
    if (kind == "NSAttributeDescription" || kind == "NSDerivedAttributeDescription") {
      if (auto attribute = decodedAttribute(property)) {
        entity.attributes.push_back(std::move(*attribute));
      }
    } else if (kind == "NSRelationshipDescription") {
      entity.relationships.push_back(decodedRelationship(property));
    }
  }
  addIndexes(object, entity);
  return entity;
}

/// The values of "NSEntities". The model archive in a store uses another dictionary class.
std::vector<Node> entityNodes(const Node& entities) {
  if (entities.containsValueForKey("values")) return entities.decodeObjectForKey("values").array();
  std::vector<Node> nodes;
  for (const auto& [key, value] : entities.dictionary()) nodes.push_back(value);
  return nodes;
}

bool lessWithoutCase(const std::string& left, const std::string& right) {
  return asciiLower(left) < asciiLower(right);
}

template <typename Property>
void inherit(std::vector<Property>& properties, const std::vector<Property>& inherited) {
  const auto byName = [](const Property& a, const Property& b) { return a.name < b.name; };
  properties.insert(properties.end(), inherited.begin(), inherited.end());
  // The stable sort puts an overridden property before the inherited one.
  std::stable_sort(properties.begin(), properties.end(), byName);
  const auto same = [](const Property& a, const Property& b) { return a.name == b.name; };
  properties.erase(std::unique(properties.begin(), properties.end(), same), properties.end());
}

}  // namespace

Expected<std::vector<EntityDescription>> decodedEntities(const Node& model) {
  if (model.className() != "NSManagedObjectModel") return damaged("it holds something else.");
  std::vector<EntityDescription> entities;
  for (const auto& object : entityNodes(model.decodeObjectForKey("NSEntities"))) {
    entities.push_back(decodedEntity(object));
    if (entities.back().name.empty()) return damaged("an entity has no name.");
  }
  return entities;
}

Expected<std::vector<EntityDescription>> orderedEntities(std::vector<EntityDescription> entities) {
  // In descending order, since the last element of the stack is processed first.
  std::sort(entities.begin(), entities.end(), [](const auto& a, const auto& b) {
    return lessWithoutCase(b.name, a.name) || (!lessWithoutCase(a.name, b.name) && b.name < a.name);
  });
  std::map<std::string, std::vector<std::size_t>, std::less<>> children;
  for (std::size_t i = 0; i < entities.size(); ++i) {
    if (i > 0 && entities[i].name == entities[i - 1].name) {
      return damaged("entity \"" + entities[i].name + "\" occurs twice.");
    }
    children[entities[i].superentityName].push_back(i);
  }
  struct Pending {
    std::size_t entity = 0;
    std::size_t ancestors = 0;
  };
  std::vector<EntityDescription> ordered;
  std::map<std::string, std::size_t, std::less<>> places;
  std::vector<Pending> stack;
  for (const auto root : children[""]) stack.push_back({root, 0});
  while (!stack.empty()) {
    const auto [index, ancestors] = stack.back();
    stack.pop_back();
    auto entity = std::move(entities[index]);
    if (ancestors > kMaxAncestors) return damaged("too many ancestors of \"" + entity.name + "\".");
    const auto parent = places.find(entity.superentityName);
    const EntityDescription none;
    const auto& inherited = parent == places.end() ? none : ordered[parent->second];
    inherit(entity.attributes, inherited.attributes);
    inherit(entity.relationships, inherited.relationships);
    places[entity.name] = ordered.size();
    for (const auto child : children[entity.name]) stack.push_back({child, ancestors + 1});
    ordered.push_back(std::move(entity));
  }
  // The rest descends from a cycle or from a missing entity.
  if (ordered.size() != entities.size()) return damaged("its entities do not form a tree.");
  return ordered;
}

}  // namespace vantrel
