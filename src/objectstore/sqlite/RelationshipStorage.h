#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "objectstore/sqlite/StoredEntities.h"

namespace vantrel {

/// Where a store keeps a to-many relationship: as pairs of keys, the owner's and the related
/// object's, in two columns of a table. One of the columns may be the table's primary key:
///
///     inverse to-one   ZIMAGE        (ZPLANNING, Z_PK)
///     no inverse       ZIMAGE        (Z4IMAGES, Z_PK)         4: the owner's entity number
///     many to many     Z_3PLANNINGS  (Z_4PLANNINGS, Z_3IMAGES)
///     to-one in a foreign model's owner
///                      ZPLANNING     (Z_PK, ZIMAGES)
struct RelationshipStorage {
  enum class Kind {
    kNone,       ///< The store has no such pairs: every count is 0.
    kUnsettled,  ///< Unknown: read as kNone, but callers must not act on the count.
    kKeyColumn,  ///< A column in the table of one of the two entities.
    kJoinTable,  ///< A table of pairs only.
  };
  Kind kind = Kind::kNone;
  std::string table;
  std::string ownerColumn;
  std::string destinationColumn;
  /// Whether the related objects are of the relationship's destination entity in our model, so that
  /// they can be fetched. False if a foreign model relates to another entity.
  bool isDestinationInModel = false;
  /// The table of the related objects; empty if unknown.
  std::string destinationTable;
  DeleteRule deleteRule = DeleteRule::kNullify;

  /// SQL condition for the pairs with an owner and an existing related object. A join table may
  /// refer to objects that were deleted.
  std::string pairCondition() const;
  bool hasPairs() const { return kind != Kind::kNone && kind != Kind::kUnsettled; }
};

/// Finds out how the relationships are stored: from our model, if it wrote the store, otherwise
/// from the model in the store's Z_MODELCACHE, otherwise from its tables and columns. Results are
/// cached. Throws StoreFailure.
class RelationshipStorages {
 public:
  RelationshipStorages(StoreConnection& connection, StoredEntities& entities,
                       const ManagedObjectModel& model, bool isForeign);

  /// `relationship` is a to-many relationship of `entity`, both of our model.
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
  bool hasReadCarriedModel_ = false;
  std::unique_ptr<ManagedObjectModel> carriedModel_;
  std::map<const RelationshipDescription*, RelationshipStorage> storages_;
};

}  // namespace vantrel
