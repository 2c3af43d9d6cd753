#include "objectstore/sqlite/RelationshipStorage.h"

#include <algorithm>
#include <charconv>
#include <span>

#include "base/Ascii.h"
#include "objectstore/sqlite/ModelCache.h"

namespace vantrel {

namespace {

std::string numbered(std::int64_t number) {
  return "Z_" + std::to_string(number);
}

/// "PLANNINGS" for "Z_4PLANNINGS" and the number 4; empty if the column has another number.
std::string_view nameAfterNumber(std::string_view column, std::int64_t number) {
  const std::string start = numbered(number);
  if (!column.starts_with(start) || column.size() == start.size()) return {};
  column.remove_prefix(start.size());
  return isAsciiDigit(column.front()) ? std::string_view() : column;
}

/// 3 for "Z_3IMAGES" and the name "IMAGES", which may be followed by a digit.
std::optional<std::int64_t> numberBefore(std::string_view column, std::string_view name) {
  std::int64_t number = 0;
  const char* end = column.data() + column.size();
  if (!column.starts_with("Z_")) return std::nullopt;
  const auto [stop, error] = std::from_chars(column.data() + 2, end, number);
  std::string_view rest(stop, static_cast<std::size_t>(end - stop));
  if (error != std::errc() || !rest.starts_with(name)) return std::nullopt;
  rest.remove_prefix(name.size());
  return rest.empty() || (rest.size() == 1 && isAsciiDigit(rest[0])) ? std::optional(number)
                                                                     : std::nullopt;
}

}  // namespace

std::string RelationshipStorage::pairCondition() const {
  std::string condition = sqlName(ownerColumn) + " IS NOT NULL AND " + sqlName(destinationColumn);
  if (destinationTable.empty() || destinationColumn == "Z_PK") return condition + " IS NOT NULL";
  return condition + " IN (SELECT Z_PK FROM " + sqlName(destinationTable) + ")";
}

RelationshipStorages::RelationshipStorages(StoreConnection& connection, StoredEntities& entities,
                                           const ManagedObjectModel& model, bool isForeign)
    : connection_(connection), entities_(entities), model_(model), isForeign_(isForeign) {}

const RelationshipStorage& RelationshipStorages::storage(
    const EntityDescription& entity, const RelationshipDescription& relationship) {
  const auto found = storages_.find(&relationship);
  if (found != storages_.end()) return found->second;
  RelationshipStorage storage;
  if (!isForeign_) {
    storage = byModel(model_, entity, relationship);
  } else if (const auto* carried = carriedModel()) {
    storage = byModel(*carried, entity, relationship);
  } else {
    storage = bySchema(entity, relationship);
  }
  return storages_.emplace(&relationship, std::move(storage)).first->second;
}

const ManagedObjectModel* RelationshipStorages::carriedModel() {
  if (hasReadCarriedModel_) return carriedModel_.get();
  hasReadCarriedModel_ = true;
  if (!hasColumn("Z_MODELCACHE", "Z_CONTENT")) return nullptr;
  auto query = connection_.statement("SELECT Z_CONTENT FROM Z_MODELCACHE LIMIT 1");
  if (query.next()) carriedModel_ = modelFromCache(query.bytes(0));
  return carriedModel_.get();
}

bool RelationshipStorages::hasColumn(const std::string& table, const std::string& column) {
  const auto& columns = connection_.columnsOfTable(table);
  return std::find(columns.begin(), columns.end(), column) != columns.end();
}

RelationshipStorage RelationshipStorages::byModel(const ManagedObjectModel& model,
                                                  const EntityDescription& owner,
                                                  const RelationshipDescription& ours) {
  const auto* entity = model.entityNamed(owner.name);
  const auto* relationship = entity ? entity->relationship(ours.name) : nullptr;
  if (!relationship || relationship->isTransient) return {};
  RelationshipStorage storage;
  storage.kind = Kind::kUnsettled;
  storage.deleteRule = relationship->deleteRule;
  const auto* destination = relationship->destinationEntity;
  if (!destination) return storage;
  storage.isDestinationInModel = destination->name == ours.destinationEntityName;

  const std::string otherTable = tableName(*destination);
  if (connection_.tableExists(otherTable)) storage.destinationTable = otherTable;
  const auto settle = [&](std::string table, std::string ownerColumn,
                          std::string destinationColumn) {
    storage.table = std::move(table);
    storage.ownerColumn = std::move(ownerColumn);
    storage.destinationColumn = std::move(destinationColumn);
    if (!connection_.tableExists(storage.table)) {
      storage.kind = Kind::kNone;
    } else if (hasColumn(storage.table, storage.ownerColumn) &&
               hasColumn(storage.table, storage.destinationColumn)) {
      storage.kind = Kind::kKeyColumn;
    }
  };
  if (!relationship->isToMany) {
    settle(tableName(*entity), "Z_PK", storeName(ours.name));
    return storage;
  }
  const auto* inverse = destination->relationship(relationship->inverseName);
  if (inverse && !inverse->isToMany) {
    settle(otherTable, storeName(inverse->name), "Z_PK");
    return storage;
  }
  const auto number = entities_.number(entity->name);
  if (!number) return storage;
  if (!inverse) {
    settle(otherTable, "Z" + std::to_string(*number) + storeName(ours.name).substr(1), "Z_PK");
    return storage;
  }
  const auto otherNumber = entities_.number(destination->name);
  if (!otherNumber) return storage;
  const std::string forward = storeName(ours.name).substr(1);
  const std::string backward = storeName(inverse->name).substr(1);
  for (const auto& name : {numbered(*number) + forward, numbered(*otherNumber) + backward}) {
    auto join = joinTable(name, numbered(*number) + backward);
    if (!join) continue;
    join->deleteRule = storage.deleteRule;
    join->isDestinationInModel = storage.isDestinationInModel;
    join->destinationTable = storage.destinationTable;
    return *join;
  }
  return storage;
}

std::optional<RelationshipStorage> RelationshipStorages::joinTable(const std::string& name,
                                                                   const std::string& ownerColumn) {
  // Join tables of ordered relationships have sort keys besides the two keys.
  std::vector<std::string> keys;
  for (const auto& column : connection_.columnsOfTable(name)) {
    if (!column.starts_with("Z_FOK_")) keys.push_back(column);
  }
  constexpr std::size_t kPair = 2;
  if (keys.size() != kPair) return std::nullopt;
  // A digit follows if two columns would otherwise have the same name.
  const auto isOwners = [&](const std::string& key) {
    const bool isLonger = key.size() == ownerColumn.size() + 1 && isAsciiDigit(key.back()) &&
                          key.starts_with(ownerColumn);
    return key == ownerColumn || isLonger;
  };
  const bool first = isOwners(keys[0]);
  const bool second = isOwners(keys[1]);
  // If both match, prefer the exact name.
  const bool takeFirst = first && (!second || keys[0] == ownerColumn);
  if (!first && !second) return std::nullopt;
  RelationshipStorage storage;
  storage.kind = Kind::kJoinTable;
  storage.table = name;
  storage.ownerColumn = keys[takeFirst ? 0 : 1];
  storage.destinationColumn = keys[takeFirst ? 1 : 0];
  return storage;
}

std::vector<std::string> RelationshipStorages::entityTables() {
  auto query = connection_.statement(
      "SELECT m.name FROM sqlite_schema m WHERE m.type = 'table' AND EXISTS"
      " (SELECT 1 FROM pragma_table_info(m.name) WHERE name = 'Z_ENT')"
      " AND m.name <> 'Z_PRIMARYKEY' ORDER BY m.name");
  std::vector<std::string> tables;
  while (query.next()) tables.emplace_back(query.text(0));
  return tables;
}

bool RelationshipStorages::isOfModel(const std::string& table) const {
  const auto& entities = model_.entities();
  return std::any_of(entities.begin(), entities.end(), [&](const EntityDescription& entity) {
    return storeName(entity.name) == table;
  });
}

std::vector<RelationshipStorage> RelationshipStorages::joinTablesInSchema(
    std::int64_t ownerNumber, const RelationshipDescription& ours) {
  auto query = connection_.statement(
      "SELECT name FROM sqlite_schema WHERE type = 'table' AND name GLOB 'Z_[0-9]*' ORDER BY name");
  std::vector<std::string> tables;
  while (query.next()) tables.emplace_back(query.text(0));

  const std::string forward = storeName(ours.name).substr(1);
  std::vector<RelationshipStorage> joins;
  for (const auto& table : tables) {
    for (const auto& column : connection_.columnsOfTable(table)) {
      // The inverse relationship's name is unknown. The column with the owner's key is named by the
      // owner's number and the inverse's name, the other one by the other entity's number and this
      // relationship's name.
      const auto name = nameAfterNumber(column, ownerNumber);
      auto join = name.empty() || name == forward ? std::nullopt : joinTable(table, column);
      if (!join) continue;
      const auto otherNumber = numberBefore(join->destinationColumn, forward);
      if (!otherNumber) continue;
      const auto* other = entities_.modelEntity(*otherNumber);
      join->isDestinationInModel = other && other->name == ours.destinationEntityName;
      if (other && connection_.tableExists(tableName(*other))) {
        join->destinationTable = tableName(*other);
      }
      // The delete rule is unknown: keep the other objects when an owner is deleted.
      join->deleteRule = DeleteRule::kNullify;
      joins.push_back(std::move(*join));
    }
  }
  return joins;
}

RelationshipStorage RelationshipStorages::bySchema(const EntityDescription& owner,
                                                   const RelationshipDescription& ours) {
  RelationshipStorage unsettled;
  unsettled.kind = Kind::kUnsettled;
  const auto number = entities_.number(owner.name);
  if (!number) return unsettled;
  const auto* destination = ours.destinationEntity;
  const std::string ownTable = tableName(owner);
  const std::string expectedTable = destination ? tableName(*destination) : std::string();
  const std::string forward = storeName(ours.name);
  const std::string inverse = storeName(ours.inverseName);
  const std::string hidden = "Z" + std::to_string(*number) + forward.substr(1);
  const auto tables = entityTables();
  std::vector<std::string> unknownTables;
  std::remove_copy_if(tables.begin(), tables.end(), std::back_inserter(unknownTables),
                      [&](const std::string& table) { return isOfModel(table); });

  std::vector<RelationshipStorage> candidates = joinTablesInSchema(*number, ours);
  const auto add = [&](const std::string& table, const std::string& ownerColumn,
                       const std::string& destinationColumn, bool isDestinationInModel) {
    candidates.push_back({Kind::kKeyColumn,
                          table,
                          ownerColumn,
                          destinationColumn,
                          isDestinationInModel,
                          {},
                          ours.deleteRule});
  };
  if (hasColumn(ownTable, forward)) {
    add(ownTable, "Z_PK", forward, unknownTables.empty());
  }
  for (const auto& table : tables) {
    if (hasColumn(table, hidden)) {
      add(table, hidden, "Z_PK", table == expectedTable);
    }
  }
  if (hasColumn(expectedTable, inverse)) {
    add(expectedTable, inverse, "Z_PK", true);
  } else if (unknownTables.size() == 1 && hasColumn(unknownTables.front(), inverse)) {
    add(unknownTables.front(), inverse, "Z_PK", false);
  }
  if (candidates.size() == 1) return std::move(candidates.front());
  // Without candidates there are no pairs, unless another table may refer to this one by a name
  // that the model does not know.
  const bool mayHold = !unknownTables.empty() || connection_.tableExists(expectedTable);
  return candidates.empty() && !mayHold ? RelationshipStorage() : unsettled;
}

}  // namespace vantrel
