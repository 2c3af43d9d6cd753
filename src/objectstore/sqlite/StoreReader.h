#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "objectstore/sqlite/SqliteStore.h"

namespace vantrel {

/// Reads rows of an open store. Throws what StoreConnection throws.
class StoreReader {
 public:
  StoreReader(StoreConnection& connection, StoredEntities& entities)
      : connection_(connection), entities_(entities) {}

  /// Rows of the entity that `condition` ("ZPLANNING = ?"; empty for all) holds for.
  struct Query {
    const EntityDescription* entity = nullptr;
    std::string condition;
    std::vector<Value> values;
    std::string order = "Z_PK";
    std::size_t limit = 0;
  };
  /// Throws StoreFailure for keys or values that the model does not have.
  Query queryForRequest(const FetchRequest& request, const EntityDescription& entity);
  void rows(const Query& query, const RowReceiver& receive);
  std::vector<std::int64_t> keys(const Query& query);
  std::size_t count(const Query& query);
  /// `storeUrl` tells where large values stand that have files of their own.
  Value bytes(const EntityDescription& entity, std::size_t slot, std::int64_t key,
              const std::filesystem::path& storeUrl);

 private:
  std::string source(const Query& query);

  StoreConnection& connection_;
  StoredEntities& entities_;
};

}  // namespace vantrel
