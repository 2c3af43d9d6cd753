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

/// The numbers are those of compiled models.
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
  std::string inverseName;  ///< Empty when there is none.
  bool isToMany = false;
  bool isOrdered = false;
  bool isTransient = false;
  DeleteRule deleteRule = DeleteRule::kNullify;
};

/// SHA-256 of what makes an entity's rows readable; two models fit when all their hashes agree.
using VersionHash = std::array<std::byte, 32>;

/// One entity of a model, inherited properties included.
struct EntityDescription {
  std::string name;
  std::string superentityName;  ///< Empty for a root.
  bool isAbstract = false;
  std::vector<AttributeDescription> attributes;        ///< By name.
  std::vector<RelationshipDescription> relationships;  ///< By name.
  /// Names of the attributes that an index of the store covers.
  std::vector<std::string> indexedAttributes;
  /// Absent in a bare .mom, which holds no hashes.
  std::optional<VersionHash> versionHash;
  /// Makes an object of the entity's own class; empty makes a plain ManagedObject.
  std::function<std::shared_ptr<ManagedObject>()> makeObject;

  const AttributeDescription* attribute(std::string_view key) const;
  const RelationshipDescription* relationship(std::string_view key) const;
};

}  // namespace vantrel
