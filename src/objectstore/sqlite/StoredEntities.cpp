#include "objectstore/sqlite/StoredEntities.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "objectstore/model/AttributeValues.h"

namespace vantrel {

namespace {

/// Entity numbers of the tables of the persistent history begin here.
constexpr std::int64_t kFirstHistoryNumber = 16000;

}  // namespace

StoredEntities::StoredEntities(StoreConnection& connection, const ManagedObjectModel& model,
                               std::string storeUuid)
    : connection_(connection), model_(model), storeUuid_(std::move(storeUuid)), layout_(model) {}

void StoredEntities::forget() {
  primaryKeyRows_.clear();
  stored_.clear();
  selections_.clear();
}

const std::map<std::int64_t, StoredEntities::PrimaryKeyRow>& StoredEntities::primaryKeyRows() {
  if (!primaryKeyRows_.empty()) return primaryKeyRows_;
  auto query = connection_.statement("SELECT Z_ENT, Z_NAME, Z_SUPER FROM Z_PRIMARYKEY");
  while (query.next()) {
    primaryKeyRows_[query.integer(0)] = {std::string(query.text(1)), query.integer(2)};
  }
  return primaryKeyRows_;
}

std::optional<std::int64_t> StoredEntities::number(std::string_view entityName) {
  for (const auto& [number, row] : primaryKeyRows()) {
    if (row.name == entityName) return number;
  }
  return std::nullopt;
}

const EntityDescription* StoredEntities::modelEntity(std::int64_t number) {
  const auto& rows = primaryKeyRows();
  // The tree of a damaged store may be a cycle.
  for (std::size_t depth = 0; depth <= rows.size(); ++depth) {
    const auto row = rows.find(number);
    if (row == rows.end()) return nullptr;
    if (const auto* entity = model_.entityNamed(row->second.name)) return entity;
    number = row->second.super;
  }
  return nullptr;
}

const EntityDescription* StoredEntities::modelEntity(std::string_view storedName) {
  if (const auto* entity = model_.entityNamed(storedName)) return entity;
  const auto named = number(storedName);
  return named ? modelEntity(*named) : nullptr;
}

const StoredEntity& StoredEntities::stored(const EntityDescription& entity) {
  const auto known = stored_.find(&entity);
  if (known != stored_.end()) return known->second;
  StoredEntity stored;
  stored.entity = &entity;
  stored.table = tableName(entity);
  const auto& present = connection_.columnsOfTable(stored.table);
  stored.hasTable = !present.empty();
  const auto ifPresent = [&](const std::string& column) {
    return std::find(present.begin(), present.end(), column) == present.end() ? std::string()
                                                                              : column;
  };
  const auto& [columns, entityColumns] = layout_.columns(entity);
  std::transform(columns.begin(), columns.end(), std::back_inserter(stored.columns), ifPresent);
  std::transform(entityColumns.begin(), entityColumns.end(),
                 std::back_inserter(stored.entityColumns), ifPresent);
  return stored_.emplace(&entity, std::move(stored)).first->second;
}

std::optional<std::int64_t> StoredEntities::numberOfNamelessRows(const EntityDescription& entity) {
  const StoredEntity& place = stored(entity);
  if (!place.hasTable) return std::nullopt;
  auto query = connection_.statement("SELECT DISTINCT Z_ENT FROM " + sqlName(place.table) +
                                     " WHERE Z_ENT IS NOT NULL");
  std::optional<std::int64_t> found;
  bool isUnique = true;
  while (query.next()) {
    const std::int64_t number = query.integer(0);
    const auto row = primaryKeyRows_.find(number);
    if (row != primaryKeyRows_.end() && model_.entityNamed(row->second.name)) continue;
    isUnique = !found;
    found = number;
  }
  return isUnique ? found : std::nullopt;
}

RowKind StoredEntities::makeKind(const EntityDescription& entity, std::string_view name,
                                 const std::map<std::string, int>& selected) {
  RowKind kind;
  kind.stored = &stored(entity);
  kind.idPrototype = ManagedObjectID::permanentID(storeUuid_, name, 1);
  for (const auto& column : kind.stored->columns) {
    const auto found = selected.find(column);
    kind.columnOfSlot.push_back(found == selected.end() ? -1 : found->second);
  }
  return kind;
}

const Selection& StoredEntities::selection(const EntityDescription& entity) {
  const auto known = selections_.find(&entity);
  if (known != selections_.end()) return known->second;
  Selection selection;
  std::vector<const EntityDescription*> family;
  for (const auto& candidate : model_.entities()) {
    if (candidate.isKindOf(entity)) family.push_back(&candidate);
  }
  selection.columns = "Z_PK, Z_ENT, Z_OPT";
  int next = 3;
  std::map<std::string, int> selected;
  for (const auto* member : family) {
    const auto& columns = stored(*member).columns;
    for (std::size_t slot = 0; slot < columns.size(); ++slot) {
      const bool isLarge =
          slot < member->attributes.size() && isReadOnDemand(member->attributes[slot].type);
      if (columns[slot].empty() || isLarge || selected.contains(columns[slot])) continue;
      selected[columns[slot]] = next++;
      selection.columns += ", " + sqlName(columns[slot]);
    }
  }
  for (const auto& [number, row] : primaryKeyRows()) {
    const auto* member = modelEntity(number);
    if (!member || !member->isKindOf(entity)) continue;
    selection.kinds.emplace(number, makeKind(*member, row.name, selected));
  }
  for (const auto* member : family) {
    if (number(member->name)) continue;
    const auto nameless = numberOfNamelessRows(*member);
    if (nameless) selection.kinds[*nameless] = makeKind(*member, member->name, selected);
  }
  selection.ownKind = makeKind(entity, entity.name, selected);
  if (!entity.superentityName.empty()) {
    for (const auto& [number, kind] : selection.kinds) {
      selection.filter += (selection.filter.empty() ? "" : ", ") + std::to_string(number);
    }
    selection.filter = "Z_ENT IN (" + selection.filter + ")";
  }
  // Cached only if everything could be read.
  return selections_.emplace(&entity, std::move(selection)).first->second;
}

StoredEntities::Numbers StoredEntities::numbersForInserting(const EntityDescription& entity) {
  Numbers numbers;
  std::int64_t super = 0;
  if (entity.superentity) {
    const Numbers parents = numbersForInserting(*entity.superentity);
    numbers.root = parents.root;
    super = parents.own;
  }
  if (const auto known = number(entity.name)) {
    numbers.own = *known;
  } else {
    const auto nameless = numberOfNamelessRows(entity);
    const auto& rows = primaryKeyRows();
    const auto history = rows.lower_bound(kFirstHistoryNumber);
    const auto last = history == rows.begin() ? 0 : std::prev(history)->first;
    numbers.own = nameless.value_or(std::max<std::int64_t>(last, 0) + 1);
    if (!rows.contains(numbers.own)) {
      connection_
          .statement("INSERT INTO Z_PRIMARYKEY (Z_ENT, Z_NAME, Z_SUPER, Z_MAX) VALUES (?, ?, ?, 0)")
          .bind(numbers.own)
          .bind(entity.name)
          .bind(super)
          .execute();
      // From now on, rows of the entity are recognised by the new number.
      forget();
    }
  }
  if (!entity.superentity) numbers.root = numbers.own;
  return numbers;
}

}  // namespace vantrel
