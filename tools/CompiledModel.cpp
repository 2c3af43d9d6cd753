#include "CompiledModel.h"

#include <nettle/base64.h>
#include <nettle/sha2.h>

#include <array>
#include <map>

#include "objectstore/model/ManagedObjectModel.h"
#include "platform/archive/KeyedArchiver.h"

namespace vantrel {

namespace {

using Object = KeyedArchiver::Object;
using Entries = std::vector<std::pair<Object, Object>>;

constexpr std::int32_t kExternalStorageFlag = 4;

std::string valueClassName(AttributeType type) {
  switch (type) {
    case AttributeType::kString:
      return "NSString";
    case AttributeType::kDate:
      return "NSDate";
    case AttributeType::kBinary:
      return "NSData";
    case AttributeType::kDecimal:
      return "NSDecimalNumber";
    case AttributeType::kUuid:
      return "NSUUID";
    case AttributeType::kUri:
      return "NSURL";
    case AttributeType::kTransformable:
      return {};
    default:
      return "NSNumber";
  }
}

/// Writes one version with the keys that readers need. Relationships are added
/// before they are filled, as they refer to each other.
class ModelArchive {
 public:
  explicit ModelArchive(const ModelVersion& version) : version_(version) {}
  Data data();

 private:
  Object addEntity(const EntityDescription& entity);
  void fillProperty(Object property, const std::string& name, bool isOptional, bool isTransient);
  Object addAttribute(const AttributeDescription& attribute);
  Object fillRelationship(const RelationshipDescription& relationship,
                          const EntityDescription& entity);
  Object addDefault(const AttributeDescription& attribute);
  void addIndexes(const EntityDescription& entity, Object object);
  /// Returns the same object for equal texts.
  Object addString(const std::string& text);
  Object addText(const std::string& text) { return text.empty() ? Object() : addString(text); }
  Object addArray(std::span<const Object> elements,
                  const KeyedArchiver::ClassNames& classNames = {"NSArray", "NSObject"});
  Object addDictionary(const Entries& entries);

  const ModelVersion& version_;
  KeyedArchiver archiver_;
  std::map<std::string, Object> strings_;
  std::map<std::pair<std::string, std::string>, Object> relationships_;
};

Object ModelArchive::addString(const std::string& text) {
  const auto [known, isNew] = strings_.try_emplace(text);
  if (isNew) known->second = archiver_.addValue(PropertyList::string(text));
  return known->second;
}

Object ModelArchive::addArray(std::span<const Object> elements,
                              const KeyedArchiver::ClassNames& classNames) {
  auto references = PropertyList::array();
  for (const auto& element : elements) references.append(element.reference());
  const auto object = archiver_.addObject(classNames);
  object.encode(references, "NS.objects");
  return object;
}

Object ModelArchive::addDictionary(const Entries& entries) {
  std::vector<Object> values;
  auto keys = PropertyList::array();
  for (const auto& [key, value] : entries) {
    keys.append(key.reference());
    values.push_back(value);
  }
  const auto object = addArray(values, {"NSDictionary", "NSObject"});
  object.encode(keys, "NS.keys");
  return object;
}

Object ModelArchive::addDefault(const AttributeDescription& attribute) {
  const auto& value = attribute.defaultValue;
  if (const auto* text = std::get_if<std::string>(&value)) return addString(*text);
  if (const auto* real = std::get_if<double>(&value)) {
    return archiver_.addValue(PropertyList::real(*real));
  }
  const auto* whole = std::get_if<std::int64_t>(&value);
  if (!whole) return {};
  const bool isFlag = attribute.type == AttributeType::kBoolean;
  return archiver_.addValue(isFlag ? PropertyList::boolean(*whole != 0)
                                   : PropertyList::integer(*whole));
}

void ModelArchive::fillProperty(Object property, const std::string& name, bool isOptional,
                                bool isTransient) {
  if (isOptional) property.encodeBool(true, "NSIsOptional");
  if (isTransient) property.encodeBool(true, "NSIsTransient");
  property.encodeObject(addString(name), "NSPropertyName");
}

Object ModelArchive::addAttribute(const AttributeDescription& attribute) {
  const auto object =
      archiver_.addObject({"NSAttributeDescription", "NSPropertyDescription", "NSObject"});
  fillProperty(object, attribute.name, attribute.isOptional, attribute.isTransient);
  object.encodeInt32(static_cast<std::int32_t>(attribute.type), "NSAttributeType");
  object.encodeObject(addText(valueClassName(attribute.type)), "NSAttributeValueClassName");
  object.encodeObject(addDefault(attribute), "NSDefaultValue");
  object.encodeInt32(attribute.storesExternally ? kExternalStorageFlag : 0, "NSFlagsKey");
  return object;
}

Object ModelArchive::fillRelationship(const RelationshipDescription& relationship,
                                      const EntityDescription& entity) {
  const auto& destination = relationship.destinationEntityName;
  const auto object = relationships_[{entity.name, relationship.name}];
  fillProperty(object, relationship.name, true, relationship.isTransient);
  object.encodeObject(addString(destination), "_NSDestinationEntityName");
  object.encodeObject(relationships_[{destination, relationship.inverseName}],
                      "NSInverseRelationship");
  object.encodeObject(addText(relationship.inverseName), "_NSInverseRelationshipName");
  object.encodeInt32(0, "NSMinCount");
  object.encodeInt32(relationship.isToMany ? 0 : 1, "NSMaxCount");
  object.encodeInt32(static_cast<std::int32_t>(relationship.deleteRule), "NSDeleteRule");
  if (relationship.isOrdered) object.encodeBool(true, "NSIsOrdered");
  return object;
}

void ModelArchive::addIndexes(const EntityDescription& entity, Object object) {
  if (entity.indexedAttributes.empty()) return;
  std::vector<Object> indexes;
  for (const auto& attribute : entity.indexedAttributes) {
    const auto name = addString(attribute);
    const auto element = archiver_.addObject({"NSFetchIndexElementDescription", "NSObject"});
    element.encodeObject(name, "NSPropertyName");
    const auto index = archiver_.addObject({"NSFetchIndexDescription", "NSObject"});
    index.encodeObject(name, "NSIndexName");
    index.encodeObject(addArray(std::array{element}), "NSIndexElements");
    indexes.push_back(index);
  }
  object.encodeObject(addArray(indexes), "NSFetchIndexDescriptions");
}

Object ModelArchive::addEntity(const EntityDescription& entity) {
  Entries properties;
  for (const auto& attribute : entity.attributes) {
    properties.emplace_back(addString(attribute.name), addAttribute(attribute));
  }
  for (const auto& relationship : entity.relationships) {
    properties.emplace_back(addString(relationship.name), fillRelationship(relationship, entity));
  }
  const auto name = addString(entity.name);
  const auto object = archiver_.addObject({"NSEntityDescription", "NSObject"});
  object.encodeObject(name, "NSEntityName");
  object.encodeObject(name, "NSClassNameForEntity");
  object.encodeObject(addDictionary(properties), "NSProperties");
  addIndexes(entity, object);
  return object;
}

Data ModelArchive::data() {
  const auto model = archiver_.addObject({"NSManagedObjectModel", "NSObject"});
  for (const auto& entity : version_.entities) {
    for (const auto& relationship : entity.relationships) {
      relationships_[{entity.name, relationship.name}] =
          archiver_.addObject({"NSRelationshipDescription", "NSPropertyDescription", "NSObject"});
    }
  }
  Entries entries;
  for (const auto& entity : version_.entities) {
    entries.emplace_back(addString(entity.name), addEntity(entity));
  }
  model.encodeObject(addDictionary(entries), "NSEntities");
  model.encodeObject(addArray(std::array{addString(version_.identifier)}, {"NSSet", "NSObject"}),
                     "NSVersionIdentifiers");
  return archiver_.archivedDataWithRootObject(model);
}

VersionHash sha256(std::span<const std::byte> content) {
  sha256_ctx context;
  sha256_init(&context);
  sha256_update(&context, content.size(), reinterpret_cast<const std::uint8_t*>(content.data()));
  VersionHash hash;
  sha256_digest(&context, hash.size(), reinterpret_cast<std::uint8_t*>(hash.data()));
  return hash;
}

/// Returns only what determines how the rows of an entity are stored: indexes, defaults and delete
/// rules may change without making stores foreign.
std::string canonicalText(const EntityDescription& entity) {
  std::string text = "entity " + entity.name + "\n";
  for (const auto& attribute : entity.attributes) {
    if (attribute.isTransient) continue;
    text += "attribute " + attribute.name + " " + std::to_string(static_cast<int>(attribute.type));
    if (attribute.isOptional) text += " optional";
    if (attribute.storesExternally) text += " external";
    text += "\n";
  }
  for (const auto& relationship : entity.relationships) {
    text += "relationship " + relationship.name + (relationship.isToMany ? " many " : " one ") +
            relationship.destinationEntityName + " inverse=" + relationship.inverseName;
    if (relationship.isOrdered) text += " ordered";
    text += "\n";
  }
  return text;
}

/// Returns the Base64 SHA-256 of all hashes in the order of the entities' names.
std::string checksum(const ManagedObjectModel::VersionHashes& hashes) {
  Data all;
  for (const auto& [name, hash] : hashes) all.insert(all.end(), hash.begin(), hash.end());
  const auto digest = sha256(all);
  std::array<char, BASE64_ENCODE_RAW_LENGTH(SHA256_DIGEST_SIZE)> text{};
  base64_encode_raw(text.data(), digest.size(),
                    reinterpret_cast<const std::uint8_t*>(digest.data()));
  return {text.begin(), text.end()};
}

}  // namespace

Data archivedModel(const ModelVersion& version) {
  return ModelArchive(version).data();
}

std::string versionName(const ModelSource& source, const ModelVersion& version) {
  return source.name + version.identifier;
}

PropertyList versionInfo(const ModelSource& source) {
  auto allHashes = PropertyList::dictionary();
  auto allChecksums = PropertyList::dictionary();
  for (const auto& version : source.versions) {
    ManagedObjectModel::VersionHashes hashes;
    auto dictionary = PropertyList::dictionary();
    for (const auto& entity : version.entities) {
      const auto text = canonicalText(entity);
      const auto hash = sha256(std::as_bytes(std::span(text)));
      hashes.emplace(entity.name, hash);
      dictionary.set(entity.name, PropertyList::data(hash));
    }
    const auto name = versionName(source, version);
    allHashes.set(name, dictionary);
    allChecksums.set(name, PropertyList::string(checksum(hashes)));
  }
  auto info = PropertyList::dictionary();
  info.set("NSManagedObjectModel_CurrentVersionName",
           PropertyList::string(versionName(source, source.versions.back())));
  info.set("NSManagedObjectModel_VersionHashes", allHashes);
  info.set("NSManagedObjectModel_VersionChecksums", allChecksums);
  return info;
}

}  // namespace vantrel
