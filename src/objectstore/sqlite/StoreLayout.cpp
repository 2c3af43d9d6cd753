#include "objectstore/sqlite/StoreLayout.h"

#include <algorithm>
#include <tuple>

#include "base/Ascii.h"

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

bool hasSubentities(const ManagedObjectModel& model, const EntityDescription& entity) {
  const auto& entities = model.entities();
  return std::any_of(entities.begin(), entities.end(),
                     [&](const EntityDescription& other) { return other.superentity == &entity; });
}

}  // namespace

std::string storeName(std::string_view name) {
  return "Z" + asciiUpper(name);
}

std::string sqlName(std::string_view name) {
  // No SQL keyword begins with Z.
  if (name.starts_with('Z') && std::all_of(name.begin(), name.end(), isAsciiWordCharacter<char>)) {
    return std::string(name);
  }
  std::string result = "\"";
  for (const char c : name) {
    if (c == '"') result += c;
    result += c;
  }
  return result += '"';
}

std::string tableName(const EntityDescription& entity) {
  return storeName(entity.root->name);
}

StoreLayout::StoreLayout(const ManagedObjectModel& model) : columns_(model.entities().size()) {
  // Superentities come before their subentities.
  for (const auto& entity : model.entities()) addEntity(model, entity);
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
  // Several subentities may have a property of the same name.
  for (int digit = 1; std::any_of(table.columns.begin(), table.columns.end(),
                                  [&](const Column& c) { return c.name == name; });
       ++digit) {
    name = wanted + std::to_string(digit);
  }
  table.columns.push_back({name, type, group});
  return name;
}

void StoreLayout::addEntity(const ManagedObjectModel& model, const EntityDescription& entity) {
  const EntityDescription* parent = entity.superentity;
  // Depth first: an entity's root has the last table.
  if (!parent) tables_.push_back({tableName(entity), {}});
  Table& table = tables_.back();
  Columns& columns = columns_[entity.index];
  for (const auto& attribute : entity.attributes) {
    std::string column;
    if (const auto inherited = parent ? parent->slotOfAttribute(attribute.name) : std::nullopt) {
      column = columns_[parent->index].bySlot[*inherited];
    } else if (!attribute.isTransient) {
      const ColumnKind kind = kindOf(attribute.type);
      column = addColumn(table, attribute.name, kind.type, kind.group);
    }
    columns.bySlot.push_back(column);
    columns.entityBySlot.emplace_back();
  }
  for (const auto& relationship : entity.relationships) {
    if (relationship.isToMany) continue;
    std::string column;
    std::string entityColumn;
    if (const auto inherited = parent ? parent->slotOfToOne(relationship.name) : std::nullopt) {
      column = columns_[parent->index].bySlot[*inherited];
      entityColumn = columns_[parent->index].entityBySlot[*inherited];
    } else if (!relationship.isTransient) {
      column = addColumn(table, relationship.name, kToOneKey.type, kToOneKey.group);
      const auto* target = relationship.destinationEntity;
      if (target && hasSubentities(model, *target)) {
        entityColumn = "Z" + std::to_string(target->index + 1) + "_" + column.substr(1);
        table.columns.push_back({entityColumn, kToOneKey.type, kToOneKey.group});
      }
    }
    columns.bySlot.push_back(column);
    columns.entityBySlot.push_back(entityColumn);
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
  for (const auto& entity : model.entities()) {
    const std::string table = tableName(entity);
    if (!entity.superentity && hasSubentities(model, entity)) {
      create(table + "_Z_ENT_INDEX", table, "Z_ENT");
    }
    for (const auto& key : entity.indexedAttributes) {
      const auto slot = entity.slotOfAttribute(key);
      if (!slot || columns(entity).bySlot[*slot].empty()) continue;
      create("Z_" + entity.name + "_" + key, table,
             sqlName(columns(entity).bySlot[*slot]) + " COLLATE BINARY ASC");
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
