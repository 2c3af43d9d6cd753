#include <utility>

#include "base/Uuid.h"
#include "objectstore/sqlite/SqliteStore.h"
#include "platform/system/MainQueue.h"
#include "platform/system/Paths.h"
#include "store/Database.h"
#include "store/DuplicateRule.h"

namespace vantrel {

namespace fs = std::filesystem;

Expected<void> Database::copyDatabase(const fs::path& url, const fs::path& toNewDatabase) {
  auto model = managedObjectModel();
  if (modelFailure_) return tl::unexpected(*modelFailure_);
  StoreOptions options = mainStoreOptions();
  options.sqlitePragmas = {{"journal_mode", "WAL"}};
  if (toNewDatabase == groupStoreURL()) paths::createPrivateDirectory(toNewDatabase.parent_path());
  return SqliteStore::copy(url, toNewDatabase, options, model);
}

bool Database::migrateDatabase(const fs::path& url, const fs::path& toNewDatabase) {
  return copyDatabase(url, toNewDatabase).has_value();
}

bool Database::isMigrationNeeded() const {
  const auto url = groupStoreURL();
  if (!url || !persistentStoreCoordinator_) return true;
  const auto metadata = PersistentStoreCoordinator::metadataForPersistentStore(*url);
  const auto hashes = persistentStoreCoordinator_->managedObjectModel()->versionHashes();
  return !metadata || hashes.empty() || metadata->versionHashes != hashes;
}

void Database::performUpdatesFrom3To4() {
  constexpr const char* kUniqueIdentifierKey = "uniqueIdentifier";
  if (!managedObjectContext_) return;
  // Each row has a version, Z_OPT, as an optimistic lock: a record read at Z_OPT 3 is saved as 4,
  // and only if the row is still at 3. A program that changed one record concurrently would make
  // this whole save fail, so lock the store first.
  static_cast<void>(managedObjectContext_->lockStore());
  for (const auto& entity : std::as_const(*managedObjectModel_).entities()) {
    const auto objects = managedObjectContext_->executeFetchRequest(
        {.entityName = entity.name, .predicate = Predicate::isNil(kUniqueIdentifierKey)});
    if (!objects) continue;
    for (const auto& object : *objects) {
      if (object->valueForKey(kUniqueIdentifierKey) == Value()) {
        object->setValueForKey(uuidString(), kUniqueIdentifierKey);
      }
    }
  }
  // Callers count the records without an identifier afterwards.
  static_cast<void>(managedObjectContext_->save());
  managedObjectContext_->reset();
}

Database::Objects Database::duplicateObjectsInArray(const Objects& array,
                                                    const Comparison& withCompare) const {
  Objects duplicates;
  for (std::size_t i = 0; i < array.size(); ++i) {
    for (std::size_t j = i + 1; j < array.size(); ++j) {
      if (withCompare(*array[i], *array[j])) duplicates.push_back(array[j]);
    }
  }
  return duplicates;
}

Expected<Database::Objects> Database::duplicateObjects() {
  Objects duplicates;
  ManagedObjectContext* context = managedObjectContext();
  for (const DuplicateRule* rule : {&kPlanningRule, &kCustomPoiRule, &kCustomCameraRule}) {
    const auto objects =
        context->executeFetchRequest({.entityName = std::string(rule->entityName)});
    if (!objects) continue;
    std::vector<std::size_t> imageCounts;
    if (rule->hasPlace) {
      auto counts = context->countsOfRelatedObjects(*objects, kImagesKey);
      if (!counts) return tl::unexpected(counts.error());
      imageCounts = std::move(*counts);
    }
    for (const std::size_t index : duplicateIndexes(*rule, *objects, imageCounts)) {
      duplicates.push_back((*objects)[index]);
    }
  }
  return duplicates;
}

void Database::removeDuplicatesWithCompletion(
    std::function<void(const std::optional<Error>&)> completion) {
  MainQueue::sharedQueue().async([this, completion = std::move(completion)] {
    ManagedObjectContext* context = managedObjectContext();
    // Otherwise another program could concurrently remove the copy that is kept.
    const auto locked = context->lockStore();
    const auto duplicates = duplicateObjects();
    if (!duplicates || duplicates->empty()) {
      context->unlockStore();
      return completion(duplicates ? std::nullopt : std::optional(duplicates.error()));
    }
    if (!locked) return completion(locked.error());
    for (const auto& object : *duplicates) context->deleteObject(object);
    const auto saved = context->save();
    completion(saved ? std::nullopt : std::optional(saved.error()));
  });
}

}  // namespace vantrel
