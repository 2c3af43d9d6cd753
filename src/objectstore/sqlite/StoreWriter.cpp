#include "objectstore/sqlite/StoreWriter.h"

#include <algorithm>
#include <limits>

#include "objectstore/sqlite/ExternalData.h"
#include "objectstore/sqlite/StoreError.h"

namespace vantrel {

namespace {

[[noreturn]] void failConflict(const RowChange& change) {
  failStore(StoreErrorCode::kConflict, "another program changed the same object meanwhile",
            {{"entity", change.entity->name}, {"key", std::to_string(change.key)}});
}

bool isAbsent(const Value& value) {
  return std::holds_alternative<std::monostate>(value);
}

}  // namespace

StoreWriter::StoreWriter(StoreConnection& connection, StoredEntities& entities,
                         RelationshipStorages& storages, const ManagedObjectModel& model)
    : connection_(connection), entities_(entities), storages_(storages), model_(model) {}

std::vector<std::int64_t> StoreWriter::write(const ChangeSet& changes) {
  allocateKeys(changes.inserted);
  for (std::size_t at = 0; at < changes.inserted.size(); ++at) {
    insert(changes.inserted[at], keys_[at]);
  }
  for (const auto& change : changes.updated) update(change);
  for (const auto& change : changes.deleted) remove(change);
  for (const auto& change : changes.deleted) removeReferences(change);
  keepSharedFiles();
  return std::move(keys_);
}

void StoreWriter::allocateKeys(const std::vector<RowChange>& inserted) {
  struct Need {
    const EntityDescription* entity = nullptr;
    std::vector<std::size_t> positions;
  };
  std::map<std::int64_t, Need> needs;  // By the root's number.
  for (std::size_t at = 0; at < inserted.size(); ++at) {
    const EntityDescription* entity = inserted[at].entity;
    if (!entities_.stored(*entity).hasTable) {
      failStore(StoreErrorCode::kNoPlace, "the store has no place for a " + entity->name);
    }
    const auto numbers = entities_.numbersForInserting(*entity);
    numbers_[entity] = numbers.own;
    auto& need = needs[numbers.root];
    need.entity = entity;
    need.positions.push_back(at);
  }
  keys_.assign(inserted.size(), 0);
  for (const auto& [root, need] : needs) {
    std::int64_t key =
        takeKeys(*need.entity, root, static_cast<std::int64_t>(need.positions.size()));
    for (const std::size_t at : need.positions) keys_[at] = key++;
  }
}

std::int64_t StoreWriter::takeKeys(const EntityDescription& entity, std::int64_t rootNumber,
                                   std::int64_t count) {
  auto largest =
      connection_.statement("SELECT max(Z_PK) FROM " + sqlName(entities_.stored(entity).table));
  auto query = connection_.statement("SELECT Z_MAX FROM Z_PRIMARYKEY WHERE Z_ENT = ?");
  query.bind(rootNumber);
  const std::int64_t counted = query.next() ? query.integer(0) : 0;
  // Keys of deleted rows are never used again. Another program may have added rows without
  // counting.
  const std::int64_t used = std::max(counted, largest.next() ? largest.integer(0) : 0);
  if (used > std::numeric_limits<std::int64_t>::max() - count) {
    failStore(StoreErrorCode::kDamaged, "the store has no keys left for new records");
  }
  auto update = connection_.statement("UPDATE Z_PRIMARYKEY SET Z_MAX = ? WHERE Z_ENT = ?");
  if (update.bind(used + count).bind(rootNumber).execute() != 1) {
    failStore(StoreErrorCode::kDamaged, "the store's table of record numbers is damaged");
  }
  return used + 1;
}

std::vector<std::pair<std::string, Value>> StoreWriter::columnValues(const RowChange& change) {
  const EntityDescription& entity = *change.entity;
  const StoredEntity& stored = entities_.stored(entity);
  std::vector<std::pair<std::string, Value>> result;
  const auto add = [&](std::size_t slot, const std::string& name, Value value) {
    if (!stored.columns[slot].empty()) {
      result.emplace_back(stored.columns[slot], std::move(value));
    } else if (!isAbsent(value)) {
      failStore(StoreErrorCode::kNoPlace,
                "the store has no place for \"" + name + "\" of a " + entity.name);
    }
  };
  for (const auto& [slot, value] : change.values) {
    const auto& attribute = entity.attributes[slot];
    if (attribute.isTransient) continue;
    const auto* bytes = std::get_if<std::vector<std::byte>>(&value);
    add(slot, attribute.name,
        bytes && attribute.storesExternally ? Value(wrappedBytes(*bytes)) : value);
  }
  for (const auto& [slot, reference] : change.references) {
    const std::int64_t key = reference.inserted ? keys_[*reference.inserted] : reference.key;
    add(slot, entity.toOneInSlot(slot).name, key ? Value(key) : Value());
    if (stored.entityColumns[slot].empty()) continue;
    const auto number = key ? entities_.number(reference.entity->name) : std::nullopt;
    result.emplace_back(stored.entityColumns[slot], number ? Value(*number) : Value());
  }
  return result;
}

void StoreWriter::insert(const RowChange& change, std::int64_t key) {
  std::string columns = "Z_PK, Z_ENT, Z_OPT";
  std::string places = "?, ?, 1";
  const auto values = columnValues(change);
  for (const auto& [column, value] : values) {
    columns += ", " + sqlName(column);
    places += ", ?";
  }
  auto statement =
      connection_.statement("INSERT INTO " + sqlName(entities_.stored(*change.entity).table) +
                            " (" + columns + ") VALUES (" + places + ")");
  statement.bind(key).bind(numbers_.at(change.entity));
  for (const auto& [column, value] : values) statement.bindValue(value);
  statement.execute();
}

void StoreWriter::update(const RowChange& change) {
  std::string assignments;
  const auto values = columnValues(change);
  for (const auto& [slot, value] : change.values) releaseFile(change, slot);
  for (const auto& [column, value] : values) assignments += sqlName(column) + " = ?, ";
  auto statement = connection_.statement(
      "UPDATE " + sqlName(entities_.stored(*change.entity).table) + " SET " + assignments +
      "Z_OPT = coalesce(Z_OPT, 0) + 1 WHERE Z_PK = ? AND coalesce(Z_OPT, 0) = ?");
  for (const auto& [column, value] : values) statement.bindValue(value);
  if (statement.bind(change.key).bind(change.version).execute() != 1) failConflict(change);
}

void StoreWriter::remove(const RowChange& change) {
  const std::string table = sqlName(entities_.stored(*change.entity).table);
  for (std::size_t slot = 0; slot < change.entity->attributes.size(); ++slot) {
    releaseFile(change, slot);
  }
  auto statement =
      connection_.statement("DELETE FROM " + table + " WHERE Z_PK = ? AND coalesce(Z_OPT, 0) = ?");
  if (statement.bind(change.key).bind(change.version).execute() == 1) return;
  // If another process has deleted it too, the result is the same.
  auto query = connection_.statement("SELECT 1 FROM " + table + " WHERE Z_PK = ?");
  if (query.bind(change.key).next()) failConflict(change);
}

void StoreWriter::releaseFile(const RowChange& change, std::size_t slot) {
  const StoredEntity& stored = entities_.stored(*change.entity);
  const bool isExternal = change.entity->attributes[slot].storesExternally;
  if (!isExternal || stored.columns[slot].empty()) return;
  auto query = connection_.statement("SELECT " + sqlName(stored.columns[slot]) + " FROM " +
                                     sqlName(stored.table) + " WHERE Z_PK = ?");
  const auto name = query.bind(change.key).next() ? externalFileName(query.bytes(0)) : std::nullopt;
  if (!name) return;
  releasedFiles_.insert(*name);
  releasingColumns_.emplace(stored.table, stored.columns[slot]);
}

/// Several rows may share a file.
void StoreWriter::keepSharedFiles() {
  for (const auto& [table, name] : releasingColumns_) {
    const std::string column = sqlName(name);
    std::string sql = "SELECT ";
    sql.append(column).append(" FROM ").append(sqlName(table));
    sql.append(" WHERE length(").append(column).append(") = ?");
    auto query = connection_.statement(sql);
    query.bind(kExternalReferenceSize);
    while (query.next()) {
      if (const auto file = externalFileName(query.bytes(0))) releasedFiles_.erase(*file);
    }
  }
}

void StoreWriter::removeReferences(const RowChange& change) {
  const auto run = [&](const std::string& sql) {
    connection_.statement(sql).bind(change.key).execute();
  };
  const auto clear = [&](const RelationshipStorage& storage, const std::string& column) {
    const std::string table = sqlName(storage.table);
    const std::string condition = sqlName(column) + " = ?";
    if (storage.kind == RelationshipStorage::Kind::kJoinTable) {
      run("DELETE FROM " + table + " WHERE " + condition);
    } else {
      run("UPDATE " + table + " SET " + sqlName(column) +
          " = NULL, Z_OPT = coalesce(Z_OPT, 0) + 1 WHERE " + condition);
    }
  };
  const auto* root = change.entity->root;
  for (const auto& entity : model_.entities()) {
    for (const auto& relationship : entity.relationships) {
      if (!relationship.isToMany) continue;
      const auto& storage = storages_.storage(entity, relationship);
      if (!storage.hasPairs() || storage.deleteRule == DeleteRule::kNoAction) continue;
      const auto* destination = relationship.destinationEntity;
      // The other column is the primary key of the row that has the reference.
      if (entity.root == root && storage.ownerColumn != "Z_PK") clear(storage, storage.ownerColumn);
      if (storage.isDestinationInModel && destination && destination->root == root &&
          storage.destinationColumn != "Z_PK") {
        clear(storage, storage.destinationColumn);
      }
    }
  }
}

}  // namespace vantrel
