#include "objectstore/PersistentStoreCoordinator.h"

#include <utility>

#include "objectstore/sqlite/SqliteStore.h"
#include "objectstore/sqlite/StoreError.h"

namespace vantrel {

PersistentStoreCoordinator::PersistentStoreCoordinator(std::shared_ptr<ManagedObjectModel> model)
    : model_(std::move(model)),
      failure_(storeError(StoreErrorCode::kMissing, "no store has been opened")) {}

PersistentStoreCoordinator::~PersistentStoreCoordinator() = default;

Expected<SqliteStore*> PersistentStoreCoordinator::addPersistentStore(
    const std::optional<std::filesystem::path>& url, const StoreOptions& options) {
  Expected<std::unique_ptr<SqliteStore>> store =
      store_
          ? tl::unexpected(storeError(StoreErrorCode::kInvalidRequest, "a store is open already"))
      : url ? SqliteStore::open(*url, options, model_)
            : tl::unexpected(
                  storeError(StoreErrorCode::kCannotCreate, "there is no folder for the store"));
  if (!store) {
    if (!store_) failure_ = store.error();
    return tl::unexpected(std::move(store.error()));
  }
  store_ = std::move(*store);
  return store_.get();
}

Expected<StoreMetadata> PersistentStoreCoordinator::metadataForPersistentStore(
    const std::filesystem::path& url) {
  return SqliteStore::metadataAt(url);
}

}  // namespace vantrel
