#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "objectstore/model/ManagedObjectModel.h"

namespace vantrel {

/// The name of the table or column for an entity or property: "ZFOOBAR" for "fooBar".
std::string storeName(std::string_view name);
/// The table with the rows of an entity: that of its root entity.
std::string tableName(const EntityDescription& entity);
/// A name in SQL: quoted unless it is a plain word.
std::string sqlName(std::string_view name);

/// The tables that a store of the model has: one for each root entity, shared by its subentities,
/// with a column for each attribute and to-one relationship.
class StoreLayout {
 public:
  explicit StoreLayout(const ManagedObjectModel& model);

  struct Column {
    std::string name;
    std::string_view type;
    int group = 0;  ///< In a new table, columns are ordered by group, then by name.
  };
  struct Table {
    std::string name;
    std::vector<Column> columns;  ///< Without Z_PK, Z_ENT and Z_OPT; in the order of a new table.
  };
  struct Columns {
    std::vector<std::string> bySlot;  ///< Empty for transient properties.
    /// By slot: the column with the entity number of a to-one relationship's object. Empty unless
    /// the destination has subentities.
    std::vector<std::string> entityBySlot;
  };

  const std::vector<Table>& tables() const { return tables_; }
  const Columns& columns(const EntityDescription& entity) const { return columns_[entity.index]; }

  static std::string createTableStatement(const Table& table);
  /// Each creates an index unless it exists.
  const std::vector<std::string>& createIndexStatements() const { return indexes_; }

 private:
  void addEntity(const ManagedObjectModel& model, const EntityDescription& entity);
  void addIndexes(const ManagedObjectModel& model);
  std::string addColumn(Table& table, std::string_view property, std::string_view type, int group);

  std::vector<Table> tables_;
  std::vector<Columns> columns_;  ///< By the entity's index.
  std::vector<std::string> indexes_;
};

}  // namespace vantrel
