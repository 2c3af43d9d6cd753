#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/Error.h"
#include "objectstore/ManagedObject.h"
#include "objectstore/PersistentStoreCoordinator.h"
#include "objectstore/model/ChangeSet.h"
#include "objectstore/model/FetchRequest.h"

namespace vantrel {

struct FetchedRow;

/// The objects fetched from a store and their unsaved changes: fetch, insert, change, delete, then
/// save all or nothing. If the coordinator has no store, functions that need one fail with its
/// `storeFailure`. Main thread only.
class ManagedObjectContext {
 public:
  explicit ManagedObjectContext(std::shared_ptr<PersistentStoreCoordinator> coordinator);
  ~ManagedObjectContext();
  ManagedObjectContext(const ManagedObjectContext&) = delete;
  ManagedObjectContext& operator=(const ManagedObjectContext&) = delete;

  using Objects = std::vector<std::shared_ptr<ManagedObject>>;

  const std::shared_ptr<PersistentStoreCoordinator>& persistentStoreCoordinator() const {
    return coordinator_;
  }

  /// Creates an object with the default values of its attributes and calls its `awakeFromInsert`.
  /// Null if the entity is unknown or abstract.
  std::shared_ptr<ManagedObject> insertNewObject(std::string_view entityName);

  /// The objects that match the request, unsaved changes included. Objects without unsaved changes
  /// are updated with what other processes have saved. Rows are sorted by the request's
  /// descriptors, then by key: of two plans with the same date, the one that was inserted first
  /// comes first. Reads no more rows than it returns.
  Expected<Objects> executeFetchRequest(const FetchRequest& request);
  /// Returns false to stop.
  using ObjectVisitor = std::function<bool(const std::shared_ptr<ManagedObject>&)>;
  /// Passes each object that `executeFetchRequest` would return to `visit`. Keeps none in memory,
  /// unless the entity has unsaved changes. `visit` must not save.
  Expected<void> enumerateFetchRequest(const FetchRequest& request, const ObjectVisitor& visit);
  /// The number of objects that match the request, ignoring its limit.
  Expected<std::size_t> countForFetchRequest(const FetchRequest& request);
  /// The object with a permanent URI; null if it no longer exists. Fails with kInvalidURI if `uri`
  /// is malformed or belongs to another store or an unknown entity.
  Expected<std::shared_ptr<ManagedObject>> objectWithURI(std::string_view uri);
  /// The number of related objects of each object in a to-many relationship, unsaved changes
  /// included, with one query for all. The objects must have the same entity. Fails with
  /// kUnsettledRelation if it is unknown how a foreign store keeps the relationship.
  Expected<std::vector<std::size_t>> countsOfRelatedObjects(const Objects& objects,
                                                            std::string_view relationship);

  /// Deletes the object on the next save and applies the delete rules of its relationships. If the
  /// related objects cannot be read, that save fails.
  void deleteObject(const std::shared_ptr<ManagedObject>& object);

  /// Prevents other processes from writing to the store until the next `save`, `reset` or
  /// `unlockStore`: call it before reading values on which the changes depend. Fails with kLocked
  /// if another process writes for more than 5 s. Does nothing if the store is read only; then
  /// `save` fails. If the process exits first, nothing is written.
  Expected<void> lockStore();
  /// Lets all reads until `unlockStore` see the store as it is now.
  Expected<void> freezeStore();
  void unlockStore();

  bool hasChanges() const;
  /// Writes all changes in one transaction, or none. Fails with kConflict if another process has
  /// changed one of the objects since it was read; the objects in memory stay as they are.
  Expected<void> save();
  /// Discards all unsaved changes and detaches all objects.
  void reset();

 private:
  friend class ManagedObject;
  /// The index of the root entity, and the row's key or the number of the temporary identifier.
  using Place = std::pair<std::size_t, std::int64_t>;
  using Pending = std::map<Place, std::shared_ptr<ManagedObject>>;

  Expected<const EntityDescription*> checkedEntity(const FetchRequest& request) const;
  static Place placeOf(const ManagedObject& object);
  std::shared_ptr<ManagedObject> makeObject(const EntityDescription& entity);
  std::shared_ptr<ManagedObject> objectForRow(FetchedRow&& row);
  Objects matchingPendingObjects(const FetchRequest& request,
                                 const EntityDescription& entity) const;
  /// Whether there are unsaved changes of objects in the entity's table.
  bool hasPending(const EntityDescription& entity) const;

  void noteChange(ManagedObject& object);
  void forget(const ManagedObject& object);
  /// Removes an object from the context permanently.
  void detach(ManagedObject& object);
  bool isDeleted(const ManagedObject& object) const;
  Value readBytes(const ManagedObject& object, std::size_t slot) const;
  std::shared_ptr<ManagedObject> objectForKey(const EntityDescription& entity, std::int64_t key);
  Expected<Objects> relatedObjects(const ManagedObject& object,
                                   const RelationshipDescription& relationship);
  std::size_t countOfRelatedObjects(const ManagedObject& object,
                                    const RelationshipDescription& relationship);

  DeleteRule deleteRule(const EntityDescription& entity,
                        const RelationshipDescription& relationship) const;
  void applyDeleteRules(const ManagedObject& object);
  Expected<void> checkDeletions();
  Expected<void> saveChanges();
  ChangeSet changeSet() const;
  RowChange changeOf(const ManagedObject& object,
                     const std::map<const ManagedObject*, std::size_t>& inserted) const;
  void settle(ManagedObject& object, std::int64_t version);

  std::shared_ptr<PersistentStoreCoordinator> coordinator_;
  /// The existing objects by root entity and key.
  std::vector<std::unordered_map<std::int64_t, ManagedObject*>> registered_;
  Pending inserted_;
  Pending updated_;
  Pending deleted_;
  std::optional<Error> deletionFailure_;
};

}  // namespace vantrel
