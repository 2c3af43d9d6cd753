#include "common/StoreAccess.h"

#include "common/ExitCode.h"
#include "objectstore/sqlite/StoreError.h"
#include "store/Database.h"
#include "store/Planning.h"

namespace vantrel {

namespace {

Expected<std::filesystem::path> storePath() {
  if (auto path = Database::sharedInstance().groupStoreURL()) return *path;
  return tl::unexpected(
      failure(kExitMissing, "store", "no folder for it; set HOME or VANTREL_GROUP_CONTAINER"));
}

/// Fetches once, since a store that cannot be opened has a context too.
Expected<ManagedObjectContext*> context() {
  if (!Database::sharedInstance().modelURL()) {
    return tl::unexpected(failure(kExitInternal, "the program's resources",
                                  "not found; is the installation complete?"));
  }
  ManagedObjectContext* context = Database::sharedInstance().managedObjectContext();
  FetchRequest request;
  request.entityName = Planning::kEntityName;
  request.fetchLimit = 1;
  const auto fetched = context->executeFetchRequest(request);
  if (!fetched) return tl::unexpected(fetched.error());
  return context;
}

}  // namespace

Expected<std::filesystem::path> existingStore() {
  auto path = storePath();
  std::error_code error;
  // Opening would create a store in an empty file, but not in the target of a dangling link.
  if (path && (std::filesystem::symlink_status(*path, error).type() ==
                   std::filesystem::file_type::not_found ||
               std::filesystem::file_size(*path, error) == 0))
    return tl::unexpected(failure(kExitMissing, path->string(),
                                  "no store yet; \"vantrel plan add\" creates one, \"vantrel "
                                  "store sample\" one with sample plans"));
  return path;
}

Expected<ManagedObjectContext*> contextForReading() {
  return existingStore().and_then([](const auto& /*path*/) { return context(); });
}

Expected<ManagedObjectContext*> contextForWriting() {
  return storePath().and_then([](const auto& /*path*/) { return context(); }).and_then([](auto* c) {
    return c->lockStore().map([c] { return c; });
  });
}

Expected<void> removeFromStore(const std::shared_ptr<ManagedObject>& object) {
  ManagedObjectContext& context = *object->managedObjectContext();
  context.deleteObject(object);
  return context.save();
}

}  // namespace vantrel
