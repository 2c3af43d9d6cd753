#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "objectstore/model/ChangeSet.h"
#include "objectstore/sqlite/RelationshipStorage.h"
#include "objectstore/sqlite/StoredEntities.h"

namespace vantrel {

/// Writes one set of changes into an open store, inside a transaction of the caller's. Throws what
/// StoreConnection throws, and StoreFailure for conflicts and for values that have no place.
class StoreWriter {
 public:
  StoreWriter(StoreConnection& connection, StoredEntities& entities, RelationshipStorages& storages,
              const ManagedObjectModel& model);

  /// Gives the keys of the inserted rows in order.
  std::vector<std::int64_t> write(const ChangeSet& changes);
  /// Names of the files with large values that no row refers to any more: to be removed once the
  /// transaction is committed.
  const std::set<std::string>& releasedFiles() const { return releasedFiles_; }

 private:
  void allocateKeys(const std::vector<RowChange>& inserted);
  std::int64_t takeKeys(const EntityDescription& entity, std::int64_t rootNumber,
                        std::int64_t count);
  void insert(const RowChange& change, std::int64_t key);
  void update(const RowChange& change);
  void remove(const RowChange& change);
  void removeReferences(const RowChange& change);
  void releaseFile(const RowChange& change, std::size_t slot);
  void keepSharedFiles();
  struct ColumnValue {
    std::string column;
    Value value;
    bool isWrapped = false;  ///< Bears the first byte of large values.
  };
  /// Refuses values for which there is no column.
  std::vector<ColumnValue> columnValues(const RowChange& change);
  void bind(SQLite::Statement& statement, int index, const ColumnValue& value);

  StoreConnection& connection_;
  StoredEntities& entities_;
  RelationshipStorages& storages_;
  const ManagedObjectModel& model_;
  std::map<const EntityDescription*, std::int64_t> numbers_;
  std::vector<std::int64_t> keys_;
  std::set<std::string> releasedFiles_;
  std::set<std::pair<std::string, std::string>> releasingColumns_;  ///< Table and column.
};

}  // namespace vantrel
