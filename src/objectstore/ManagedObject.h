#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "objectstore/model/EntityDescription.h"
#include "objectstore/model/ManagedObjectID.h"
#include "objectstore/model/RowSnapshot.h"
#include "objectstore/model/Value.h"

namespace vantrel {

class ManagedObjectContext;

/// One stored record, reached by key or through a subclass's accessors. Its context makes it and
/// keeps one object per row. After its context was reset or destroyed, or the object deleted and
/// saved, it keeps its last values (but for those of binary attributes, which are read when asked
/// for) and can no longer be saved. Main thread.
class ManagedObject : public std::enable_shared_from_this<ManagedObject> {
 public:
  virtual ~ManagedObject();
  ManagedObject(const ManagedObject&) = delete;
  ManagedObject& operator=(const ManagedObject&) = delete;

  const EntityDescription& entity() const { return *entity_; }
  const ManagedObjectID& objectID() const { return objectID_; }
  ManagedObjectContext* managedObjectContext() const { return context_; }

  /// Called once when the object is inserted, never when it is loaded.
  virtual void awakeFromInsert() {}

  /// An attribute's value; absent for an unknown key.
  Value valueForKey(std::string_view key) const;
  /// False, changing nothing, for an unknown key or a value of another kind. Integers are taken for
  /// doubles; doubles are narrowed for single-precision attributes. Setting an equal value is no
  /// change.
  bool setValueForKey(const Value& value, std::string_view key);

  /// The object at the other end of a to-one relationship; null when there is none.
  std::shared_ptr<ManagedObject> relatedObject(std::string_view relationship) const;
  /// Sets a to-one relationship (and its inverse); null clears it. False for an unknown one, or for
  /// an object of another entity or context.
  bool setRelatedObject(const std::shared_ptr<ManagedObject>& object,
                        std::string_view relationship);
  /// The objects of a to-many relationship, by key; pending changes count. Empty when the store
  /// cannot be read.
  std::vector<std::shared_ptr<ManagedObject>> relatedObjects(std::string_view relationship) const;
  std::size_t countOfRelatedObjects(std::string_view relationship) const;

 protected:
  ManagedObject() = default;

 private:
  friend class ManagedObjectContext;
  /// What differs from the stored row, by slot.
  struct Changes {
    std::vector<std::pair<std::size_t, Value>> values;
    std::vector<std::pair<std::size_t, std::shared_ptr<ManagedObject>>> related;
  };
  Value valueInSlot(std::size_t slot) const;
  Value storedValue(std::size_t slot) const;
  const std::shared_ptr<ManagedObject>* pendingRelated(std::size_t slot) const;
  void setRelatedInSlot(const std::shared_ptr<ManagedObject>& object, std::size_t slot);
  void dropChanges(std::size_t slot);
  /// Objects that are no longer a context's must not hold each other.
  void dropRelations() {
    if (changes_) changes_->related.clear();
  }
  void noteChange();
  /// The stored key of a to-one relationship, without changes; 0 for none.
  std::int64_t storedKey(std::size_t slot) const;

  std::shared_ptr<const EntityDescription> entity_;  ///< Keeps the model.
  ManagedObjectID objectID_;
  ManagedObjectContext* context_ = nullptr;
  RowSnapshot row_;
  std::unique_ptr<Changes> changes_;
  std::uint32_t table_ = 0;  ///< Number of the root entity; the context's.
};

}  // namespace vantrel
