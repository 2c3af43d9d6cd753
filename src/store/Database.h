#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "objectstore/ManagedObjectContext.h"
#include "objectstore/PersistentStoreCoordinator.h"
#include "objectstore/model/ManagedObjectModel.h"

namespace vantrel {

/// Told when a store cannot be opened.
class DatabaseDelegate {
 public:
  virtual ~DatabaseDelegate() = default;
  /// Both texts are in the user's language, ready to be shown.
  virtual void databasePersistentStoreCoordinatorDidGetError(const std::string& /*message*/,
                                                             const std::string& /*title*/) {}
};

/// Owns the two stores: the photographer's own, in the container that the application group shares,
/// and the read-only one among the resources. Everything is built on first use and kept for the
/// life of the process. Main thread, but for `sharedInstance`.
class Database {
 public:
  static Database& sharedInstance();

  std::optional<std::filesystem::path> applicationDocumentsDirectory() const;
  /// The application group's container; nothing when there is none.
  std::optional<std::filesystem::path> groupApplicationDocumentDirectory() const;
  /// "Vantrel.sqlite" in the group container.
  std::optional<std::filesystem::path> groupStoreURL() const;
  /// "Vantrel.momd" in the main bundle, else "Vantrel.mom".
  std::optional<std::filesystem::path> modelURL() const;

  std::shared_ptr<ManagedObjectModel> managedObjectModel();
  std::shared_ptr<PersistentStoreCoordinator> persistentStoreCoordinator();
  /// Null when there is no coordinator. When the store could not be opened there is a context all
  /// the same, whose fetches fail.
  ManagedObjectContext* managedObjectContext();
  std::shared_ptr<ManagedObjectModel> staticManagedObjectModel();
  std::shared_ptr<PersistentStoreCoordinator> staticPersistentStoreCoordinator();
  ManagedObjectContext* staticManagedObjectContext();

  /// Copies a store with its pictures to a new file and migrates the copy to the current model.
  /// False, and no file is created, if that fails; the old store is only read. Two stores in one
  /// folder whose names differ only in the extension would share their pictures: refused.
  bool migrateDatabase(const std::filesystem::path& url,
                       const std::filesystem::path& toNewDatabase);
  /// The same, telling why it failed.
  Expected<void> copyDatabase(const std::filesystem::path& url,
                              const std::filesystem::path& toNewDatabase);
  /// Whether the model of the store in the group container differs from that of the main
  /// coordinator; also when either is not there (the coordinator before it was first asked for).
  bool isMigrationNeeded() const;
  /// Gives every record without a unique identifier one, and resets the main context, which must
  /// have been asked for before: objects fetched from it must be fetched again. Nothing changes
  /// when the store cannot be written as a whole.
  void performUpdatesFrom3To4();

  using Objects = ManagedObjectContext::Objects;
  using Comparison = std::function<bool(const ManagedObject& earlier, const ManagedObject& later)>;
  /// The objects that equal an earlier one, in the order of the pairs: one that equals several is
  /// named for each of them. Compares each with each; the comparison may be of any kind.
  Objects duplicateObjectsInArray(const Objects& array, const Comparison& withCompare) const;
  /// Every plan, point of interest and camera of the main context that is a duplicate, each once.
  /// Fails when the pictures of a foreign store's records cannot be counted: what differs only in
  /// pictures would be taken for a duplicate. What cannot be fetched has no duplicates.
  Expected<Objects> duplicateObjects();
  /// On a later turn of the main queue: deletes those duplicates and saves, all or nothing; nothing
  /// is saved when there are none. The completion, which must not be empty, is called once, on the
  /// main queue, with the error if there was one. The database must outlive that.
  void removeDuplicatesWithCompletion(std::function<void(const std::optional<Error>&)> completion);

  /// How a store of plans is opened, wherever it is.
  static StoreOptions mainStoreOptions();

  std::shared_ptr<DatabaseDelegate> delegate() const { return delegate_.lock(); }
  void setDelegate(const std::shared_ptr<DatabaseDelegate>& delegate) { delegate_ = delegate; }

 private:
  void addStore(PersistentStoreCoordinator& coordinator,
                const std::optional<std::filesystem::path>& url, const StoreOptions& options,
                const std::optional<Error>& modelFailure, const std::string& textsName);

  bool translatePrePopulatedStore_ = false;
  std::unique_ptr<ManagedObjectContext> managedObjectContext_;
  std::shared_ptr<ManagedObjectModel> managedObjectModel_;
  std::shared_ptr<PersistentStoreCoordinator> persistentStoreCoordinator_;
  std::unique_ptr<ManagedObjectContext> staticManagedObjectContext_;
  std::shared_ptr<ManagedObjectModel> staticManagedObjectModel_;
  std::shared_ptr<PersistentStoreCoordinator> staticPersistentStoreCoordinator_;
  std::weak_ptr<DatabaseDelegate> delegate_;
  std::optional<Error> modelFailure_;
  std::optional<Error> staticModelFailure_;
};

}  // namespace vantrel
