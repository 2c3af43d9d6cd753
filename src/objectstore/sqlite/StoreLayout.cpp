#include "objectstore/sqlite/StoreLayout.h"

#include <algorithm>
#include <tuple>

#include "objectstore/model/AttributeValues.h"

namespace vantrel {

namespace {

struct ColumnKind {
  std::string_view type;
  int group;
};

constexpr ColumnKind kToOneKey = {"INTEGER", 1};

ColumnKind kindOf(AttributeType type) {
  switch (type) {
    case AttributeType::kInteger16:
    case AttributeType::kInteger32:
    case AttributeType::kInteger64:
    case AttributeType::kBoolean:
      return {"INTEGER", 0};
    case AttributeType::kDate:
      return {"TIMESTAMP", 2};
    case AttributeType::kDouble:
    case AttributeType::kFloat:
      return {"FLOAT", 2};
    case AttributeType::kDecimal:
      return {"DECIMAL", 3};
    case AttributeType::kString:
      return {"VARCHAR", 4};
    case AttributeType::kUri:
      return {"VARCHAR", 5};
    case AttributeType::kUuid:
      return {"BLOB", 6};
    case AttributeType::kTransformable:
      return {"BLOB", 7};
    case AttributeType::kBinary:
      break;
  }
  return {"BLOB", 8};
}

std::size_t indexOfEntity(const ManagedObjectModel& model, std::string_view name) {
  const auto& entities = model.entities();
  const auto found = std::find_if(entities.begin(), entities.end(),
                                  [&](const EntityDescription& e) { return e.name == name; });
  return found == entities.end() ? StoreLayout::kNone
                                 : static_cast<std::size_t>(found - entities.begin());
}

bool isPlainCharacter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

}  // namespace

std::string storeName(std::string_view name) {
  std::string result = "Z";
  for (const char c : name) {
    result += c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  }
  return result;
}

std::string sqlName(std::string_view name) {
  // Names of stores begin with Z, as no keyword does.
  if (name.starts_with('Z') && std::all_of(name.begin(), name.end(), isPlainCharacter)) {
    return std::string(name);
  }
  std::string result = "\"";
  for (const char c : name) {
    if (c == '"') result += c;
    result += c;
  }
  return result += '"';
}

StoreLayout::StoreLayout(const ManagedObjectModel& model) : places_(model.entities().size()) {
  // Super-entities stand before their sub-entities.
  for (std::size_t index = 0; index < places_.size(); ++index) placeEntity(model, index);
  for (auto& table : tables_) {
    std::stable_sort(table.columns.begin(), table.columns.end(),
                     [](const Column& a, const Column& b) {
                       return std::tie(a.group, a.name) < std::tie(b.group, b.name);
                     });
  }
  addIndexes(model);
}

std::string StoreLayout::addColumn(Table& table, std::string_view property, std::string_view type,
                                   int group) {
  const std::string wanted = storeName(property);
  std::string name = wanted;
  // Sub-entities may each have a property of the same name.
  for (int digit = 1; std::any_of(table.columns.begin(), table.columns.end(),
                                  [&](const Column& c) { return c.name == name; });
       ++digit) {
    name = wanted + std::to_string(digit);
  }
  table.columns.push_back({name, type, group});
  return name;
}

void StoreLayout::placeEntity(const ManagedObjectModel& model, std::size_t index) {
  const EntityDescription& entity = model.entities()[index];
  Place& place = places_[index];
  place.parent =
      entity.superentityName.empty() ? kNone : indexOfEntity(model, entity.superentityName);
  if (place.parent != kNone && place.parent < index) {
    places_[place.parent].hasSubentities = true;
    place.table = places_[place.parent].table;
  } else {
    place.parent = kNone;
    place.table = tables_.size();
    tables_.push_back({storeName(entity.name), {}});
  }
  const EntityDescription* parent =
      place.parent == kNone ? nullptr : &model.entities()[place.parent];
  Table& table = tables_[place.table];
  for (const auto& attribute : entity.attributes) {
    std::string column;
    if (const auto inherited = parent ? slotOfAttribute(*parent, attribute.name) : std::nullopt) {
      column = places_[place.parent].columns[*inherited];
    } else if (!attribute.isTransient) {
      const ColumnKind kind = kindOf(attribute.type);
      column = addColumn(table, attribute.name, kind.type, kind.group);
    }
    place.columns.push_back(column);
    place.entityColumns.emplace_back();
  }
  for (const auto& relationship : entity.relationships) {
    if (relationship.isToMany) continue;
    std::string column;
    std::string entityColumn;
    if (const auto inherited = parent ? slotOfToOne(*parent, relationship.name) : std::nullopt) {
      column = places_[place.parent].columns[*inherited];
      entityColumn = places_[place.parent].entityColumns[*inherited];
    } else if (!relationship.isTransient) {
      column = addColumn(table, relationship.name, kToOneKey.type, kToOneKey.group);
      const auto target = indexOfEntity(model, relationship.destinationEntityName);
      const auto& entities = model.entities();
      const bool targetHasSubentities =
          std::any_of(entities.begin(), entities.end(), [&](const EntityDescription& e) {
            return e.superentityName == relationship.destinationEntityName;
          });
      if (target != kNone && targetHasSubentities) {
        entityColumn = "Z" + std::to_string(target + 1) + "_" + column.substr(1);
        table.columns.push_back({entityColumn, kToOneKey.type, kToOneKey.group});
      }
    }
    place.columns.push_back(column);
    place.entityColumns.push_back(entityColumn);
  }
}

void StoreLayout::addIndexes(const ManagedObjectModel& model) {
  const auto create = [&](const std::string& name, const std::string& table,
                          const std::string& columns) {
    indexes_.push_back("CREATE INDEX IF NOT EXISTS " + sqlName(name) + " ON " + sqlName(table) +
                       " (" + columns + ")");
  };
  for (const auto& table : tables_) {
    for (const auto& column : table.columns) {
      if (column.group != kToOneKey.group) continue;
      create(table.name + "_" + column.name + "_INDEX", table.name, sqlName(column.name));
    }
  }
  for (std::size_t index = 0; index < places_.size(); ++index) {
    const Place& place = places_[index];
    const EntityDescription& entity = model.entities()[index];
    const std::string& table = tables_[place.table].name;
    if (place.parent == kNone && place.hasSubentities) {
      create(table + "_Z_ENT_INDEX", table, "Z_ENT");
    }
    for (const auto& key : entity.indexedAttributes) {
      const auto slot = slotOfAttribute(entity, key);
      if (!slot || place.columns[*slot].empty()) continue;
      create("Z_" + entity.name + "_" + key, table,
             sqlName(place.columns[*slot]) + " COLLATE BINARY ASC");
    }
  }
}

std::string StoreLayout::createTableStatement(const Table& table) {
  std::string sql = "CREATE TABLE " + sqlName(table.name) +
                    " ( Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER, Z_OPT INTEGER";
  for (const auto& column : table.columns) {
    sql += ", " + sqlName(column.name) + " " + std::string(column.type);
  }
  return sql + " )";
}

}  // namespace vantrel
