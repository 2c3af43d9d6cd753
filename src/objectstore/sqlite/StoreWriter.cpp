#include "objectstore/sqlite/StoreWriter.h"

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>

#include <algorithm>
#include <limits>
#include <type_traits>

#include "objectstore/model/AttributeValues.h"
#include "objectstore/sqlite/ExternalData.h"
#include "objectstore/sqlite/StoreError.h"

namespace vantrel {

namespace {

[[noreturn]] void failConflict(const RowChange& change) {
  failStore(StoreErrorCode::kConflict, "another program changed the same object meanwhile",
            {{"entity", change.entity->name}, {"key", std::to_string(change.key)}});
}

std::optional<std::string> fileNamedBy(const SQLite::Column& column) {
  const auto* bytes = static_cast<const char*>(column.getBlob());
  return externalFileName({bytes, bytes ? static_cast<std::size_t>(column.getBytes()) : 0});
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
  const auto largest =
      connection_.statement("SELECT max(Z_PK) FROM " + sqlName(entities_.stored(entity).table));
  const auto query = connection_.statement("SELECT Z_MAX FROM Z_PRIMARYKEY WHERE Z_ENT = ?");
  query->bind(1, rootNumber);
  const std::int64_t counted = query->executeStep() ? query->getColumn(0).getInt64() : 0;
  // Keys of deleted rows are not used again; a careless writer may have left the count behind.
  const std::int64_t used =
      std::max(counted, largest->executeStep() ? largest->getColumn(0).getInt64() : 0);
  if (used > std::numeric_limits<std::int64_t>::max() - count) {
    failStore(StoreErrorCode::kDamaged, "the store has no keys left for new records");
  }
  const auto guard = connection_.statement(
      "UPDATE Z_PRIMARYKEY SET Z_MAX = ? WHERE Z_ENT = ? AND coalesce(Z_MAX, 0) = ?");
  guard->bind(1, used + count);
  guard->bind(2, rootNumber);
  guard->bind(3, counted);
  if (guard->exec() != 1) {
    failStore(StoreErrorCode::kDamaged, "the store does not count its records");
  }
  return used + 1;
}

std::vector<StoreWriter::ColumnValue> StoreWriter::columnValues(const RowChange& change) {
  const EntityDescription& entity = *change.entity;
  const StoredEntity& stored = entities_.stored(entity);
  std::vector<ColumnValue> result;
  const auto add = [&](std::size_t slot, const std::string& name, Value value) {
    if (!stored.columns[slot].empty()) {
      result.push_back({stored.columns[slot], std::move(value)});
    } else if (!isAbsent(value)) {
      failStore(StoreErrorCode::kNoPlace,
                "the store has no place for \"" + name + "\" of a " + entity.name);
    }
  };
  for (const auto& [slot, value] : change.values) {
    const auto& attribute = entity.attributes[slot];
    if (attribute.isTransient) continue;
    add(slot, attribute.name, value);
    if (attribute.storesExternally && !result.empty() && !isAbsent(value)) {
      result.back().isWrapped = true;
    }
  }
  for (const auto& [slot, reference] : change.references) {
    const std::int64_t key = reference.inserted ? keys_[*reference.inserted] : reference.key;
    const auto relationship =
        std::find_if(entity.relationships.begin(), entity.relationships.end(),
                     [&, at = slot](const auto& r) { return slotOfToOne(entity, r.name) == at; });
    add(slot, relationship->name, key ? Value(key) : Value());
    if (stored.entityColumns[slot].empty()) continue;
    const auto number = key ? entities_.number(reference.entity->name) : std::nullopt;
    result.push_back({stored.entityColumns[slot], number ? Value(*number) : Value()});
  }
  return result;
}

void StoreWriter::bind(SQLite::Statement& statement, int index, const ColumnValue& column) {
  std::visit(
      [&](const auto& content) {
        using T = std::decay_t<decltype(content)>;
        if constexpr (std::is_same_v<T, std::monostate>) {
          statement.bind(index);
        } else if constexpr (std::is_same_v<T, Date>) {
          statement.bind(index, content.timeIntervalSinceReferenceDate());
        } else if constexpr (std::is_same_v<T, std::vector<std::byte>>) {
          std::vector<std::byte> stored;
          // Large values say by a first byte that they follow.
          if (column.isWrapped) stored.push_back(std::byte{1});
          stored.insert(stored.end(), content.begin(), content.end());
          // Without bytes SQLite would take the null pointer for NULL.
          statement.bind(index, stored.empty() ? "" : static_cast<const void*>(stored.data()),
                         static_cast<int>(stored.size()));
        } else {
          statement.bind(index, content);
        }
      },
      column.value);
}

void StoreWriter::insert(const RowChange& change, std::int64_t key) {
  std::string columns = "Z_PK, Z_ENT, Z_OPT";
  std::string places = "?, ?, 1";
  const auto values = columnValues(change);
  for (const auto& value : values) {
    columns += ", " + sqlName(value.column);
    places += ", ?";
  }
  const auto statement =
      connection_.statement("INSERT INTO " + sqlName(entities_.stored(*change.entity).table) +
                            " (" + columns + ") VALUES (" + places + ")");
  int index = 0;
  statement->bind(++index, key);
  statement->bind(++index, numbers_.at(change.entity));
  for (const auto& value : values) bind(*statement, ++index, value);
  statement->exec();
}

void StoreWriter::update(const RowChange& change) {
  std::string assignments;
  const auto values = columnValues(change);
  for (const auto& [slot, value] : change.values) releaseFile(change, slot);
  for (const auto& value : values) assignments += sqlName(value.column) + " = ?, ";
  const auto statement = connection_.statement(
      "UPDATE " + sqlName(entities_.stored(*change.entity).table) + " SET " + assignments +
      "Z_OPT = coalesce(Z_OPT, 0) + 1 WHERE Z_PK = ? AND coalesce(Z_OPT, 0) = ?");
  int index = 0;
  for (const auto& value : values) bind(*statement, ++index, value);
  statement->bind(++index, change.key);
  statement->bind(++index, change.version);
  if (statement->exec() != 1) failConflict(change);
}

void StoreWriter::remove(const RowChange& change) {
  const std::string table = sqlName(entities_.stored(*change.entity).table);
  for (std::size_t slot = 0; slot < change.entity->attributes.size(); ++slot) {
    releaseFile(change, slot);
  }
  const auto statement =
      connection_.statement("DELETE FROM " + table + " WHERE Z_PK = ? AND coalesce(Z_OPT, 0) = ?");
  statement->bind(1, change.key);
  statement->bind(2, change.version);
  if (statement->exec() == 1) return;
  // Someone else may have deleted it too: that is what was wanted.
  const auto query = connection_.statement("SELECT 1 FROM " + table + " WHERE Z_PK = ?");
  query->bind(1, change.key);
  if (query->executeStep()) failConflict(change);
}

void StoreWriter::releaseFile(const RowChange& change, std::size_t slot) {
  const StoredEntity& stored = entities_.stored(*change.entity);
  const bool isExternal = change.entity->attributes[slot].storesExternally;
  if (!isExternal || stored.columns[slot].empty()) return;
  const auto query = connection_.statement("SELECT " + sqlName(stored.columns[slot]) + " FROM " +
                                           sqlName(stored.table) + " WHERE Z_PK = ?");
  query->bind(1, change.key);
  const auto name = query->executeStep() ? fileNamedBy(query->getColumn(0)) : std::nullopt;
  if (!name) return;
  releasedFiles_.insert(*name);
  releasingColumns_.emplace(stored.table, stored.columns[slot]);
}

/// Copies of a row may share its file.
void StoreWriter::keepSharedFiles() {
  for (const auto& [table, name] : releasingColumns_) {
    const std::string column = sqlName(name);
    std::string sql = "SELECT ";
    sql.append(column).append(" FROM ").append(sqlName(table));
    sql.append(" WHERE length(").append(column).append(") = ?");
    const auto query = connection_.statement(sql);
    query->bind(1, static_cast<std::int64_t>(kExternalReferenceSize));
    while (query->executeStep()) {
      if (const auto file = fileNamedBy(query->getColumn(0))) releasedFiles_.erase(*file);
    }
  }
}

void StoreWriter::removeReferences(const RowChange& change) {
  const auto run = [&](const std::string& sql) {
    const auto statement = connection_.statement(sql);
    statement->bind(1, change.key);
    statement->exec();
  };
  const auto clear = [&](const std::string& table, const std::string& column) {
    run("UPDATE " + sqlName(table) + " SET " + sqlName(column) +
        " = NULL, Z_OPT = coalesce(Z_OPT, 0) + 1 WHERE " + sqlName(column) + " = ?");
  };
  const std::string& table = entities_.stored(*change.entity).table;
  for (const auto& entity : model_.entities()) {
    for (const auto& relationship : entity.relationships) {
      if (!relationship.isToMany) continue;
      const auto& storage = storages_.storage(entity, relationship);
      if (!storage.hasPairs() || storage.deleteRule == DeleteRule::kNoAction) continue;
      const auto* destination = model_.entityNamed(relationship.destinationEntityName);
      const bool isJoin = storage.kind == RelationshipStorage::Kind::kJoinTable;
      const bool isToOne = storage.kind == RelationshipStorage::Kind::kToOneKey;
      if (entities_.stored(entity).table == table && !isToOne) {
        if (isJoin) {
          run("DELETE FROM " + sqlName(storage.table) + " WHERE " + sqlName(storage.ownerColumn) +
              " = ?");
        } else {
          clear(storage.table, storage.ownerColumn);
        }
      }
      if (storage.isDestinationInModel && destination &&
          entities_.stored(*destination).table == table) {
        if (isJoin) {
          run("DELETE FROM " + sqlName(storage.table) + " WHERE " +
              sqlName(storage.destinationColumn) + " = ?");
        } else if (isToOne) {
          clear(storage.table, storage.destinationColumn);
        }
      }
    }
  }
}

}  // namespace vantrel
