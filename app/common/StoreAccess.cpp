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
      failure(kExitMissing, "store", "no place for it; set HOME or VANTREL_GROUP_CONTAINER"));
}

/// A store that could not be opened still has a context; a first fetch tells.
Expected<ManagedObjectContext*> context() {
  if (!Database::sharedInstance().modelURL()) {
    return tl::unexpected(
        failure(kExitInternal, "the program's resources", "not there; is it installed whole?"));
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
  // A file without content would be made a store by opening it; a link that leads nowhere is not.
  if (path && (std::filesystem::symlink_status(*path, error).type() ==
                   std::filesystem::file_type::not_found ||
               std::filesystem::file_size(*path, error) == 0))
    return tl::unexpected(failure(kExitMissing, path->string(),
                                  "no store yet; \"vantrel plan add\" makes one, \"vantrel "
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
