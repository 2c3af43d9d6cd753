#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "objectstore/sqlite/SqliteStore.h"

namespace vantrel {

/// Reads rows of an open store. Throws StoreFailure.
class StoreReader {
 public:
  StoreReader(StoreConnection& connection, StoredEntities& entities)
      : connection_(connection), entities_(entities) {}

  /// The rows of an entity, and of its subentities, that satisfy an SQL condition.
  struct Query {
    const EntityDescription* entity = nullptr;
    std::string condition;      ///< "ZPLANNING = ?"; empty for all rows.
    std::vector<Value> values;  ///< For the condition's parameters.
    std::string order = "Z_PK";
    std::size_t limit = 0;  ///< 0 for no limit.
  };
  /// Throws kInvalidRequest for keys that the entity does not have, and for values of another type.
  Query queryForRequest(const FetchRequest& request, const EntityDescription& entity);
  void rows(const Query& query, const RowReceiver& receive);
  std::vector<std::int64_t> keys(const Query& query);
  std::size_t count(const Query& query);
  /// An attribute's bytes, read from the column or from the external file beside `storeUrl`. Absent
  /// if either is missing.
  Value bytes(const EntityDescription& entity, std::size_t slot, std::int64_t key,
              const std::filesystem::path& storeUrl);

 private:
  std::string source(const Query& query);
  Statement statement(const std::string& sql, const Query& query);

  StoreConnection& connection_;
  StoredEntities& entities_;
};

}  // namespace vantrel
