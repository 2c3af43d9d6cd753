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

/// Receives the errors of opening a store.
class DatabaseDelegate {
 public:
  virtual ~DatabaseDelegate() = default;
  /// Both texts are in the user's language.
  virtual void databasePersistentStoreCoordinatorDidGetError(const std::string& /*message*/,
                                                             const std::string& /*title*/) {}
};

/// Owns the main store (the photographer's plans, in the container of the application group) and
/// the static store (read-only, in the resources). Models, coordinators and contexts are created on
/// first use and never destroyed before the database. Main thread only, except `sharedInstance`.
class Database {
 public:
  static Database& sharedInstance();

  std::optional<std::filesystem::path> applicationDocumentsDirectory() const;
  /// The container of the application group; `nullopt` if there is none.
  std::optional<std::filesystem::path> groupApplicationDocumentDirectory() const;
  /// "Vantrel.sqlite" in the group container; `nullopt` if there is none.
  std::optional<std::filesystem::path> groupStoreURL() const;
  /// "Vantrel.momd" in the main bundle, otherwise "Vantrel.mom"; `nullopt` if neither exists.
  std::optional<std::filesystem::path> modelURL() const;

  /// Never null: if the model or the store cannot be opened, the model is empty, the coordinator
  /// has no store, the error is logged and passed to the delegate, and fetches of the context fail
  /// with it.
  std::shared_ptr<ManagedObjectModel> managedObjectModel();
  std::shared_ptr<PersistentStoreCoordinator> persistentStoreCoordinator();
  ManagedObjectContext* managedObjectContext();
  std::shared_ptr<ManagedObjectModel> staticManagedObjectModel();
  std::shared_ptr<PersistentStoreCoordinator> staticPersistentStoreCoordinator();
  ManagedObjectContext* staticManagedObjectContext();

  /// Copies a store with its pictures to a new file and migrates the copy to the current model. The
  /// old store is only read. Returns false and creates no file on failure, which includes two
  /// stores in one folder whose names differ only in the extension: they would share their
  /// pictures.
  bool migrateDatabase(const std::filesystem::path& url,
                       const std::filesystem::path& toNewDatabase);
  /// Like migrateDatabase(), but returns the error.
  Expected<void> copyDatabase(const std::filesystem::path& url,
                              const std::filesystem::path& toNewDatabase);
  /// Whether the model of the group's store differs from that of the main coordinator. True if the
  /// store cannot be read or persistentStoreCoordinator() has not been called.
  bool isMigrationNeeded() const;
  /// Sets a unique identifier in every record that lacks one, saves (all or none; errors are
  /// ignored) and resets the main context: its objects must be fetched again. Does nothing unless
  /// managedObjectContext() has been called.
  void performUpdatesFrom3To4();

  using Objects = ManagedObjectContext::Objects;
  using Comparison = std::function<bool(const ManagedObject& earlier, const ManagedObject& later)>;
  /// Returns the later object of every pair for which `withCompare` is true, in the order of the
  /// pairs: of three equal objects 0, 1 and 2, returns 1, 2 and 2. The comparison need not be
  /// symmetric or transitive. O(n²).
  Objects duplicateObjectsInArray(const Objects& array, const Comparison& withCompare) const;
  /// Returns every duplicate plan, point of interest and camera of the main context, each once.
  /// Entities that cannot be fetched have none. Fails if the pictures in a foreign store cannot be
  /// counted: plans that differ only in their pictures would be reported. O(n log n).
  Expected<Objects> duplicateObjects();
  /// Deletes the duplicates on a later turn of the main queue and saves, all or none; does not save
  /// if there are none. Then calls `completion`, which must not be empty, there with the error,
  /// `nullopt` on success. The database must outlive the call.
  void removeDuplicatesWithCompletion(std::function<void(const std::optional<Error>&)> completion);

  /// The options to open any store of plans.
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
