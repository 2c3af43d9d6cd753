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

/// Writes the changes of one save; the caller holds the transaction. A row that another process
/// changed since it was read is detected by its version: each update and deletion names the Z_OPT
/// that was read, and fails with kConflict unless the row still has it. Throws StoreFailure.
class StoreWriter {
 public:
  StoreWriter(StoreConnection& connection, StoredEntities& entities, RelationshipStorages& storages,
              const ManagedObjectModel& model);

  /// Returns the keys of the inserted rows, in order.
  std::vector<std::int64_t> write(const ChangeSet& changes);
  /// External files that no row refers to after `write`. Remove them after the commit.
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
  /// Throws kNoPlace for values that have no column.
  std::vector<std::pair<std::string, Value>> columnValues(const RowChange& change);

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
