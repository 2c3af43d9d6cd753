#include "cli/StoreAccess.h"

#include "cli/ExitCode.h"
#include "objectstore/StoreError.h"
#include "store/Database.h"

namespace vantrel::cli {

namespace {

constexpr const char* kPlanEntity = "Planning";

Expected<std::filesystem::path> storePath() {
  if (auto path = Database::sharedInstance().groupStoreURL()) return *path;
  return tl::make_unexpected(
      failure(kExitMissing, "store", "no place for it; set HOME or VANTREL_GROUP_CONTAINER"));
}

/// The widget takes a store that cannot be read for an empty one; a fetch of our own tells.
Expected<ManagedObjectContext*> context(const std::filesystem::path& path) {
  ManagedObjectContext* context = Database::sharedInstance().managedObjectContext();
  if (!context) {
    return tl::make_unexpected(failure(kExitInternal, path.string(), "the model is missing"));
  }
  FetchRequest request;
  request.entityName = kPlanEntity;
  request.fetchLimit = 1;
  const auto fetched = context->executeFetchRequest(request);
  if (!fetched) return tl::make_unexpected(fetched.error());
  return context;
}

}  // namespace

Expected<std::filesystem::path> existingStore() {
  const auto path = storePath();
  std::error_code error;
  if (path && std::filesystem::status(*path, error).type() == std::filesystem::file_type::not_found)
    return tl::make_unexpected(failure(kExitMissing, path->string(),
                                       "no store yet; \"vantrel plan add\" makes one, \"vantrel "
                                       "store sample\" one with sample plans"));
  return path;
}

Expected<ManagedObjectContext*> contextForReading() {
  return existingStore().and_then(context);
}

Expected<ManagedObjectContext*> contextForWriting() {
  return storePath().and_then(context);
}

}  // namespace vantrel::cli
