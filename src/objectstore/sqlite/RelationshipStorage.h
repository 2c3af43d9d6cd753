#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "objectstore/sqlite/StoredEntities.h"

namespace vantrel {

/// How a store keeps a to-many relationship, whatever the way: as pairs of keys in a table. The key
/// of an owner stands in one column, that of an object it is related to in another.
struct RelationshipStorage {
  enum class Kind {
    kNone,        ///< There are no such pairs in the store: everything counts 0.
    kInverseKey,  ///< The inverse to-one's column in the other table.
    kHiddenKey,   ///< A column in the other table that no property has.
    kJoinTable,   ///< A table of pairs.
    kToOneKey,    ///< A column in the owner's table.
    kUnsettled,   ///< It cannot be told: counts as kNone, and nothing may rest on the count.
  };
  Kind kind = Kind::kNone;
  std::string table;
  std::string ownerColumn;
  std::string destinationColumn;
  /// Whether the other objects are of the entity that the model names, as it keeps them.
  bool isDestinationInModel = false;
  DeleteRule deleteRule = DeleteRule::kNullify;

  bool hasPairs() const { return kind != Kind::kNone && kind != Kind::kUnsettled; }
};

/// Finds out how relationships are stored: by the model, for stores written with it; else by the
/// model that the store carries in it; else by what tables and columns there are. Looked up on
/// first use. Throws what StoreConnection throws.
class RelationshipStorages {
 public:
  RelationshipStorages(StoreConnection& connection, StoredEntities& entities,
                       const ManagedObjectModel& model, bool isForeign);

  /// For a to-many relationship of an entity of the model.
  const RelationshipStorage& storage(const EntityDescription& entity,
                                     const RelationshipDescription& relationship);

 private:
  using Kind = RelationshipStorage::Kind;
  RelationshipStorage byModel(const ManagedObjectModel& model, const EntityDescription& owner,
                              const RelationshipDescription& ours);
  RelationshipStorage bySchema(const EntityDescription& owner, const RelationshipDescription& ours);
  std::vector<RelationshipStorage> joinTablesInSchema(std::int64_t ownerNumber,
                                                      const RelationshipDescription& ours);
  std::optional<RelationshipStorage> joinTable(const std::string& name,
                                               const std::string& ownerColumn);
  bool hasColumn(const std::string& table, const std::string& column);
  bool isOfModel(const std::string& table) const;
  std::vector<std::string> entityTables();
  const ManagedObjectModel* carriedModel();

  StoreConnection& connection_;
  StoredEntities& entities_;
  const ManagedObjectModel& model_;
  bool isForeign_;
  bool lookedForCarriedModel_ = false;
  std::unique_ptr<ManagedObjectModel> carriedModel_;
  std::map<const RelationshipDescription*, RelationshipStorage> storages_;
};

}  // namespace vantrel
