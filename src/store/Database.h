#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "objectstore/ManagedObjectContext.h"
#include "objectstore/ManagedObjectModel.h"
#include "objectstore/PersistentStoreCoordinator.h"

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
