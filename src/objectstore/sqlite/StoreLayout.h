#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "objectstore/model/ManagedObjectModel.h"

namespace vantrel {

/// "fooBar" as a table or column is called: "ZFOOBAR".
std::string storeName(std::string_view name);
/// A name as it stands in SQL: in quotation marks unless it is a plain word.
std::string sqlName(std::string_view name);

/// Where the entities of a model lie in the tables of a store: a table for each root entity, which
/// its sub-entities share, with a column for each attribute and to-one relationship.
class StoreLayout {
 public:
  explicit StoreLayout(const ManagedObjectModel& model);

  struct Column {
    std::string name;
    std::string_view type;
    int group = 0;  ///< Columns of lower groups come first in a new table, by name within one.
  };
  struct Table {
    std::string name;
    std::vector<Column> columns;  ///< Beside Z_PK, Z_ENT and Z_OPT; in the order of a new table.
  };
  struct Place {
    std::size_t table = 0;
    std::size_t parent = kNone;  ///< Index of the super-entity.
    bool hasSubentities = false;
    std::vector<std::string> columns;  ///< By slot; empty for what is not stored.
    /// By slot: the column with the entity number of a to-one's target, where it has one.
    std::vector<std::string> entityColumns;
  };
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  const std::vector<Table>& tables() const { return tables_; }
  /// By the entity's index in the model.
  const Place& place(std::size_t entity) const { return places_[entity]; }

  static std::string createTableStatement(const Table& table);
  /// Makes the indexes that are missing.
  const std::vector<std::string>& createIndexStatements() const { return indexes_; }

 private:
  void placeEntity(const ManagedObjectModel& model, std::size_t index);
  void addIndexes(const ManagedObjectModel& model);
  std::string addColumn(Table& table, std::string_view property, std::string_view type, int group);

  std::vector<Table> tables_;
  std::vector<Place> places_;
  std::vector<std::string> indexes_;
};

}  // namespace vantrel
