#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "objectstore/model/ManagedObjectID.h"
#include "objectstore/model/ManagedObjectModel.h"
#include "objectstore/sqlite/StoreConnection.h"
#include "objectstore/sqlite/StoreLayout.h"

namespace vantrel {

/// The table and columns of an entity in an open store.
struct StoredEntity {
  const EntityDescription* entity = nullptr;
  std::string table;
  bool hasTable = false;
  /// As in StoreLayout::Columns; empty for columns that the store does not have.
  std::vector<std::string> columns;
  std::vector<std::string> entityColumns;
};

/// How to read a row with a certain entity number.
struct RowKind {
  const StoredEntity* stored = nullptr;
  ManagedObjectID idPrototype;    ///< Has the name of the row's entity in the store.
  std::vector<int> columnOfSlot;  ///< Index in the selection; -1 for a slot that is not read.
};

/// The columns that a fetch of an entity selects, and how to read its rows.
struct Selection {
  std::string columns;  ///< "Z_PK, Z_ENT, Z_OPT, …"
  std::string filter;   ///< Condition for the entity and its subentities; empty for a root.
  std::map<std::int64_t, RowKind> kinds;
  RowKind ownKind;  ///< For rows with a number that is not in Z_PRIMARYKEY.
};

/// Maps the entities of a model to an open store: the tables and columns that exist, and the entity
/// numbers that Z_PRIMARYKEY assigns to names. Results are cached. Throws StoreFailure.
class StoredEntities {
 public:
  StoredEntities(StoreConnection& connection, const ManagedObjectModel& model,
                 std::string storeUuid);

  /// `entity` is one of the model.
  const StoredEntity& stored(const EntityDescription& entity);
  const Selection& selection(const EntityDescription& entity);
  /// The entity's number in this store; `nullopt` if it has none.
  std::optional<std::int64_t> number(std::string_view entityName);
  /// The numbers of the entity and of its root. Adds missing ones to Z_PRIMARYKEY: call it in a
  /// transaction.
  struct Numbers {
    std::int64_t own = 0;
    std::int64_t root = 0;
  };
  Numbers numbersForInserting(const EntityDescription& entity);
  /// The model's entity for rows of an entity of the store: the entity itself or its nearest
  /// ancestor in the store that the model has. Null if there is none.
  const EntityDescription* modelEntity(std::string_view storedName);
  const EntityDescription* modelEntity(std::int64_t number);
  /// Clears the cache.
  void forget();

 private:
  struct PrimaryKeyRow {
    std::string name;
    std::int64_t super = 0;
  };
  const std::map<std::int64_t, PrimaryKeyRow>& primaryKeyRows();
  /// The only number in the entity's table that Z_PRIMARYKEY does not assign to an entity of the
  /// model; `nullopt` if there are none or several.
  std::optional<std::int64_t> numberOfNamelessRows(const EntityDescription& entity);
  RowKind makeKind(const EntityDescription& entity, std::string_view name,
                   const std::map<std::string, int>& selected);

  StoreConnection& connection_;
  const ManagedObjectModel& model_;
  std::string storeUuid_;
  StoreLayout layout_;
  std::map<std::int64_t, PrimaryKeyRow> primaryKeyRows_;
  std::map<const EntityDescription*, StoredEntity> stored_;
  std::map<const EntityDescription*, Selection> selections_;
};

}  // namespace vantrel
