#pragma once

#include <cstddef>
#include <cstdint>
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

/// A scratch pad of objects over a store: fetch, insert, change, delete, then save all or nothing.
/// While the coordinator has no store, whatever needs one fails with the reason of that. Main
/// thread.
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
  /// How many objects each of the given ones, all of one entity, has in a to-many relationship,
  /// pending changes counted, with one query for all. Fails with kUnsettledRelation where a foreign
  /// store does not tell how it keeps the relationship: nothing may be concluded from a count then.
  Expected<std::vector<std::size_t>> countsOfRelatedObjects(const Objects& objects,
                                                            std::string_view relationship);

  /// Deletes on the next save, by the relationships' delete rules. When the objects that a rule
  /// concerns cannot be read, that save fails.
  void deleteObject(const std::shared_ptr<ManagedObject>& object);

  /// Keeps other processes from writing to the store until the next `save`, `reset` or
  /// `unlockStore`: call it before reading what decides about the changes. Fails with kLocked if
  /// another process writes for more than 5 s. Does nothing on a store that cannot be written;
  /// there `save` fails. If the process ends first, nothing is written.
  Expected<void> lockStore();
  void unlockStore();

  bool hasChanges() const;
  /// Writes all changes in one transaction, or none. Objects that someone else changed since they
  /// were read make it fail (code kConflict) and stay as they are in memory.
  Expected<void> save();
  /// Forgets every object and every unsaved change.
  void reset();

 private:
  friend class ManagedObject;
  /// By the root entity's number and the row's key, or the number of the temporary identifier.
  using Pending = std::map<std::pair<std::uint32_t, std::int64_t>, std::shared_ptr<ManagedObject>>;

  Expected<const EntityDescription*> checkedEntity(const FetchRequest& request) const;
  std::uint32_t tableOf(const EntityDescription& entity) const;
  bool isKindOf(const EntityDescription& entity, const EntityDescription& ancestor) const;
  std::shared_ptr<ManagedObject> makeObject(const EntityDescription& entity);
  std::shared_ptr<ManagedObject> objectForRow(FetchedRow&& row, std::uint32_t table);
  Objects matchingPendingObjects(const FetchRequest& request,
                                 const EntityDescription& entity) const;
  bool hasPendingIn(const Pending& pending, std::uint32_t table) const;

  void noteChange(ManagedObject& object);
  void forget(const ManagedObject& object);
  /// Takes an object out for good.
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
  /// The living objects of each table, by key.
  std::vector<std::unordered_map<std::int64_t, ManagedObject*>> registered_;
  Pending inserted_;
  Pending updated_;
  Pending deleted_;
  std::optional<Error> deletionFailure_;
};

}  // namespace vantrel
