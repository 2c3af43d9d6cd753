#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "objectstore/model/Value.h"

namespace vantrel {

class ManagedObject;
struct EntityDescription;

/// The numbers that compiled models use.
enum class AttributeType {
  kInteger16 = 100,
  kInteger32 = 200,
  kInteger64 = 300,
  kDecimal = 400,
  kDouble = 500,
  kFloat = 600,
  kString = 700,
  kBoolean = 800,
  kDate = 900,
  kBinary = 1000,
  kUuid = 1100,
  kUri = 1200,
  kTransformable = 1800,
};

struct AttributeDescription {
  std::string name;
  AttributeType type = AttributeType::kString;
  bool isOptional = true;
  bool isTransient = false;
  bool storesExternally = false;
  Value defaultValue;
};

enum class DeleteRule { kNoAction = 0, kNullify = 1, kCascade = 2, kDeny = 3 };

struct RelationshipDescription {
  std::string name;
  std::string destinationEntityName;
  std::string inverseName;  ///< Empty if there is no inverse.
  /// Null if the model has no entity of that name. Owned by the model.
  const EntityDescription* destinationEntity = nullptr;
  bool isToMany = false;
  bool isOrdered = false;
  bool isTransient = false;
  DeleteRule deleteRule = DeleteRule::kNullify;
};

/// SHA-256 of an entity's stored properties. A store fits a model if the hashes of all entities
/// agree.
using VersionHash = std::array<std::byte, 32>;

/// One entity of a model, inherited properties included. A row of the entity has a slot for each
/// attribute, in their order, followed by one for each to-one relationship.
struct EntityDescription {
  std::string name;
  std::string superentityName;  ///< Empty for a root.
  /// Null for a root. Owned by the model, which sets this and the next two members.
  const EntityDescription* superentity = nullptr;
  const EntityDescription* root = nullptr;  ///< Never null in a model; `this` for a root.
  std::size_t index = 0;                    ///< In the model's `entities()`.
  bool isAbstract = false;
  std::vector<AttributeDescription> attributes;        ///< By name.
  std::vector<RelationshipDescription> relationships;  ///< By name.
  /// Names of the attributes with an index in the store.
  std::vector<std::string> indexedAttributes;
  /// Absent if the model was read from a .mom, which holds no hashes.
  std::optional<VersionHash> versionHash;
  /// Creates an object of the entity's class. If empty, objects are plain `ManagedObject`s.
  std::function<std::shared_ptr<ManagedObject>()> makeObject;

  const AttributeDescription* attribute(std::string_view key) const;
  const RelationshipDescription* relationship(std::string_view key) const;

  /// Whether this is `ancestor` or descends from it.
  bool isKindOf(const EntityDescription& ancestor) const;
  std::size_t slotCount() const;
  /// `nullopt` if the entity has no such attribute, or no such to-one relationship.
  std::optional<std::size_t> slotOfAttribute(std::string_view key) const;
  std::optional<std::size_t> slotOfToOne(std::string_view key) const;
  /// The to-one relationship in `slot`, which must be one.
  const RelationshipDescription& toOneInSlot(std::size_t slot) const;
};

}  // namespace vantrel
