#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "objectstore/model/ManagedObjectID.h"
#include "objectstore/model/ManagedObjectModel.h"
#include "objectstore/sqlite/StoreConnection.h"
#include "objectstore/sqlite/StoreLayout.h"

namespace vantrel {

/// One entity as an open store keeps it.
struct StoredEntity {
  const EntityDescription* entity = nullptr;
  std::size_t index = 0;       ///< In the model.
  std::size_t tableIndex = 0;  ///< The same for entities that share a table.
  std::string table;
  bool hasTable = false;
  std::vector<std::string> columns;        ///< By slot; empty for those the store does not have.
  std::vector<std::string> entityColumns;  ///< By slot; mostly empty.
};

/// What a row of a fetched entity is made into, by the entity number it carries.
struct RowKind {
  const StoredEntity* stored = nullptr;
  ManagedObjectID idPrototype;    ///< Bears the name of the row's own entity.
  std::vector<int> columnOfSlot;  ///< In the selection; -1 for what is not read.
};

/// Which columns a fetch of an entity selects, and how its rows are read.
struct Selection {
  std::string columns;  ///< "Z_PK, Z_ENT, Z_OPT, …"
  std::string filter;   ///< Rows of the entity and its sub-entities; empty when all are.
  std::map<std::int64_t, RowKind> kinds;
  RowKind ownKind;  ///< For rows with a number that Z_PRIMARYKEY does not know.
};

/// How the entities of a model are found in an open store: their tables and columns as they are,
/// their numbers by name. Looked up on first use. Throws what StoreConnection throws.
class StoredEntities {
 public:
  StoredEntities(StoreConnection& connection, const ManagedObjectModel& model,
                 std::string storeUuid);

  /// For an entity of the model.
  const StoredEntity& stored(const EntityDescription& entity);
  const Selection& selection(const EntityDescription& entity);
  /// The entity's number in this store; nothing when it has none yet.
  std::optional<std::int64_t> number(std::string_view entityName);
  /// The number for new rows of the entity and that of its root; adds rows to Z_PRIMARYKEY for
  /// those without. To be called in a transaction.
  struct Numbers {
    std::int64_t own = 0;
    std::int64_t root = 0;
  };
  Numbers numbersForInserting(const EntityDescription& entity);
  /// The model's entity that objects of the named entity of the store are made as; null if none.
  const EntityDescription* modelEntity(std::string_view storedName);
  const EntityDescription* modelEntity(std::int64_t number);
  /// Drops what was looked up, after another program may have changed it.
  void forget();

 private:
  struct PrimaryKeyRow {
    std::string name;
    std::int64_t super = 0;
  };
  const std::map<std::int64_t, PrimaryKeyRow>& primaryKeyRows();
  bool isKindOf(const EntityDescription& entity, const EntityDescription& ancestor) const;
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
