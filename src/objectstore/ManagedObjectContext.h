#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "base/Error.h"
#include "objectstore/FetchRequest.h"
#include "objectstore/ManagedObject.h"
#include "objectstore/PersistentStoreCoordinator.h"

namespace vantrel {

/// A scratch pad of objects over a store: fetch, insert, change, delete, then save all or nothing.
/// Main thread.
class ManagedObjectContext {
 public:
  explicit ManagedObjectContext(std::shared_ptr<PersistentStoreCoordinator> coordinator);
  ~ManagedObjectContext();
  ManagedObjectContext(const ManagedObjectContext&) = delete;
  ManagedObjectContext& operator=(const ManagedObjectContext&) = delete;

  using Objects = std::vector<std::shared_ptr<ManagedObject>>;

  /// A new object with its attributes' defaults, after its `awakeFromInsert`; null for an entity
  /// that the model does not have or that is abstract.
  std::shared_ptr<ManagedObject> insertNewObject(std::string_view entityName);

  /// The objects that match, pending changes counted. Objects without changes of their own are
  /// brought up to date with what other processes saved. Reads no more rows than it returns.
  Expected<Objects> executeFetchRequest(const FetchRequest& request);
  /// How many would be fetched (the limit is not looked at).
  Expected<std::size_t> countForFetchRequest(const FetchRequest& request);
  /// The object that a permanent URI of this store names; null when it no longer exists, an error
  /// for a text that is no such URI or names another store or entity.
  Expected<std::shared_ptr<ManagedObject>> objectWithURI(std::string_view uri);

  /// Deletes on the next save, by the relationships' delete rules.
  void deleteObject(const std::shared_ptr<ManagedObject>& object);

  bool hasChanges() const;
  /// Writes all changes in one transaction, or none. Objects that someone else changed since they
  /// were read make it fail (code kConflict) and stay as they are in memory.
  Expected<void> save();
  /// Forgets every object and every unsaved change.
  void reset();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace vantrel
