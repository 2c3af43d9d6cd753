#include "objectstore/sqlite/RelationshipStorage.h"

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
#include <zlib.h>

#include <algorithm>
#include <charconv>
#include <span>

namespace vantrel {

namespace {

/// No honest model comes near it.
constexpr std::size_t kLargestModel = std::size_t{16} << 20;

/// Raw DEFLATE, without header; nothing for damaged or oversized data.
std::optional<std::vector<std::byte>> inflated(std::span<const std::byte> data) {
  if (data.size() > kLargestModel) return std::nullopt;
  z_stream stream = {};
  constexpr int kRaw = -15;
  if (inflateInit2(&stream, kRaw) != Z_OK) return std::nullopt;
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<std::byte*>(data.data()));
  stream.avail_in = static_cast<uInt>(data.size());
  std::vector<std::byte> result;
  int code = Z_OK;
  while (code == Z_OK && result.size() < kLargestModel) {
    const std::size_t before = result.size();
    result.resize(std::max<std::size_t>(before * 2, data.size() * 4 + 64));
    stream.next_out = reinterpret_cast<Bytef*>(&result[before]);
    stream.avail_out = static_cast<uInt>(result.size() - before);
    code = inflate(&stream, Z_NO_FLUSH);
    result.resize(result.size() - stream.avail_out);
  }
  inflateEnd(&stream);
  return code == Z_STREAM_END ? std::optional(std::move(result)) : std::nullopt;
}

const EntityDescription& rootOf(const ManagedObjectModel& model, const EntityDescription& entity) {
  const EntityDescription* root = &entity;
  for (std::size_t depth = 0; depth < model.entities().size(); ++depth) {
    const auto* parent = model.entityNamed(root->superentityName);
    if (!parent) break;
    root = parent;
  }
  return *root;
}

std::string tableOf(const ManagedObjectModel& model, const EntityDescription& entity) {
  return storeName(rootOf(model, entity).name);
}

std::string numbered(std::int64_t number) {
  return "Z_" + std::to_string(number);
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// "PLANNINGS" of "Z_4PLANNINGS" for the number 4; empty for a column of another number.
std::string_view nameBehindNumber(std::string_view column, std::int64_t number) {
  const std::string start = numbered(number);
  if (!column.starts_with(start) || column.size() == start.size()) return {};
  column.remove_prefix(start.size());
  return isDigit(column.front()) ? std::string_view() : column;
}

/// 3 of "Z_3IMAGES" for the name "IMAGES"; a digit may follow it.
std::optional<std::int64_t> numberBefore(std::string_view column, std::string_view name) {
  std::int64_t number = 0;
  const char* end = column.data() + column.size();
  if (!column.starts_with("Z_")) return std::nullopt;
  const auto [stop, error] = std::from_chars(column.data() + 2, end, number);
  std::string_view rest(stop, static_cast<std::size_t>(end - stop));
  if (error != std::errc() || !rest.starts_with(name)) return std::nullopt;
  rest.remove_prefix(name.size());
  return rest.empty() || (rest.size() == 1 && isDigit(rest[0])) ? std::optional(number)
                                                                : std::nullopt;
}

}  // namespace

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
  if (lookedForCarriedModel_) return carriedModel_.get();
  lookedForCarriedModel_ = true;
  if (!hasColumn("Z_MODELCACHE", "Z_CONTENT")) return nullptr;
  const auto query = connection_.statement("SELECT Z_CONTENT FROM Z_MODELCACHE LIMIT 1");
  if (query->executeStep()) {
    const auto column = query->getColumn(0);
    const auto* bytes = static_cast<const std::byte*>(column.getBlob());
    const auto archive = inflated({bytes, static_cast<std::size_t>(column.getBytes())});
    auto model =
        archive ? ManagedObjectModel::modelWithData(*archive) : tl::unexpected<Error>(Error{});
    if (model) carriedModel_ = std::make_unique<ManagedObjectModel>(std::move(*model));
  }
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
  // A model without the relationship has nothing to be counted.
  if (!relationship || relationship->isTransient) return {};
  RelationshipStorage storage;
  storage.kind = Kind::kUnsettled;
  storage.deleteRule = relationship->deleteRule;
  const auto* destination = model.entityNamed(relationship->destinationEntityName);
  if (!destination) return storage;
  storage.isDestinationInModel = destination->name == ours.destinationEntityName;

  const std::string ownTable = tableOf(model, *entity);
  const std::string otherTable = tableOf(model, *destination);
  const auto settle = [&](Kind kind, std::string table, std::string ownerColumn,
                          std::string destinationColumn) {
    storage.table = std::move(table);
    storage.ownerColumn = std::move(ownerColumn);
    storage.destinationColumn = std::move(destinationColumn);
    if (!connection_.tableExists(storage.table)) {
      storage.kind = Kind::kNone;
    } else if (hasColumn(storage.table, storage.ownerColumn) &&
               hasColumn(storage.table, storage.destinationColumn)) {
      storage.kind = kind;
    }
  };
  if (!relationship->isToMany) {
    settle(Kind::kToOneKey, ownTable, "Z_PK", storeName(ours.name));
    return storage;
  }
  const auto* inverse = destination->relationship(relationship->inverseName);
  if (inverse && !inverse->isToMany) {
    settle(Kind::kInverseKey, otherTable, storeName(inverse->name), "Z_PK");
    return storage;
  }
  const auto number = entities_.number(entity->name);
  if (!number) return storage;
  if (!inverse) {
    settle(Kind::kHiddenKey, otherTable,
           "Z" + std::to_string(*number) + storeName(ours.name).substr(1), "Z_PK");
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
    return *join;
  }
  return storage;
}

std::optional<RelationshipStorage> RelationshipStorages::joinTable(const std::string& name,
                                                                   const std::string& ownerColumn) {
  // Sort keys of ordered relationships stand beside the two keys.
  std::vector<std::string> keys;
  for (const auto& column : connection_.columnsOfTable(name)) {
    if (!column.starts_with("Z_FOK_")) keys.push_back(column);
  }
  constexpr std::size_t kPair = 2;
  if (keys.size() != kPair) return std::nullopt;
  // A digit may follow where two columns would be called alike.
  const auto isOwners = [&](const std::string& key) {
    const bool isLonger =
        key.size() == ownerColumn.size() + 1 && isDigit(key.back()) && key.starts_with(ownerColumn);
    return key == ownerColumn || isLonger;
  };
  const bool first = isOwners(keys[0]);
  const bool second = isOwners(keys[1]);
  // Where both look alike, the exact name decides.
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
  const auto query = connection_.statement(
      "SELECT m.name FROM sqlite_schema m WHERE m.type = 'table' AND EXISTS"
      " (SELECT 1 FROM pragma_table_info(m.name) WHERE name = 'Z_ENT')"
      " AND m.name <> 'Z_PRIMARYKEY' ORDER BY m.name");
  std::vector<std::string> tables;
  while (query->executeStep()) tables.push_back(query->getColumn(0).getString());
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
  const auto query = connection_.statement(
      "SELECT name FROM sqlite_schema WHERE type = 'table' AND name GLOB 'Z_[0-9]*' ORDER BY name");
  std::vector<std::string> tables;
  while (query->executeStep()) tables.push_back(query->getColumn(0).getString());

  const std::string forward = storeName(ours.name).substr(1);
  std::vector<RelationshipStorage> joins;
  for (const auto& table : tables) {
    for (const auto& column : connection_.columnsOfTable(table)) {
      // How the relationship that points back is called is not known: what points at an owner bears
      // the owner's number, what points at the others bears their number and this one's name.
      const auto name = nameBehindNumber(column, ownerNumber);
      auto join = name.empty() || name == forward ? std::nullopt : joinTable(table, column);
      if (!join) continue;
      const auto otherNumber = numberBefore(join->destinationColumn, forward);
      if (!otherNumber) continue;
      const auto* other = entities_.modelEntity(*otherNumber);
      join->isDestinationInModel = other && other->name == ours.destinationEntityName;
      // Whose the others are is not known either: they stay when an owner goes.
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
  const auto* destination = model_.entityNamed(ours.destinationEntityName);
  const std::string ownTable = tableOf(model_, owner);
  const std::string expectedTable = destination ? tableOf(model_, *destination) : std::string();
  const std::string forward = storeName(ours.name);
  const std::string inverse = storeName(ours.inverseName);
  const std::string hidden = "Z" + std::to_string(*number) + forward.substr(1);
  const auto tables = entityTables();
  std::vector<std::string> strangers;
  std::remove_copy_if(tables.begin(), tables.end(), std::back_inserter(strangers),
                      [&](const std::string& table) { return isOfModel(table); });

  std::vector<RelationshipStorage> candidates = joinTablesInSchema(*number, ours);
  const auto add = [&](Kind kind, const std::string& table, const std::string& ownerColumn,
                       const std::string& destinationColumn, bool isDestinationInModel) {
    candidates.push_back(
        {kind, table, ownerColumn, destinationColumn, isDestinationInModel, ours.deleteRule});
  };
  if (hasColumn(ownTable, forward)) {
    add(Kind::kToOneKey, ownTable, "Z_PK", forward, strangers.empty());
  }
  for (const auto& table : tables) {
    if (hasColumn(table, hidden)) {
      add(Kind::kHiddenKey, table, hidden, "Z_PK", table == expectedTable);
    }
  }
  if (hasColumn(expectedTable, inverse)) {
    add(Kind::kInverseKey, expectedTable, inverse, "Z_PK", true);
  } else if (strangers.size() == 1 && hasColumn(strangers.front(), inverse)) {
    add(Kind::kInverseKey, strangers.front(), inverse, "Z_PK", false);
  }
  if (candidates.size() == 1) return std::move(candidates.front());
  // With nothing by the known names there are no pairs, unless a table is there that may hang
  // together by a name that is not known.
  const bool mayHold = !strangers.empty() || connection_.tableExists(expectedTable);
  return candidates.empty() && !mayHold ? RelationshipStorage() : unsettled;
}

}  // namespace vantrel
