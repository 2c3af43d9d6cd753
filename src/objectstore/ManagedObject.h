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

/// One record of a store, accessed by key or through a subclass's accessors. Created by its
/// context, which has at most one object for each row. After the context is reset or destroyed, or
/// the object is deleted and saved, it keeps its last values, except those of binary attributes,
/// which are read from the store on each access, and can no longer be saved. Main thread only.
class ManagedObject : public std::enable_shared_from_this<ManagedObject> {
 public:
  virtual ~ManagedObject();
  ManagedObject(const ManagedObject&) = delete;
  ManagedObject& operator=(const ManagedObject&) = delete;

  const EntityDescription& entity() const { return *entity_; }
  const ManagedObjectID& objectID() const { return objectID_; }
  ManagedObjectContext* managedObjectContext() const { return context_; }

  /// Called once when the object is inserted, not when it is fetched.
  virtual void awakeFromInsert() {}

  /// An attribute's value; absent if the entity has no such attribute.
  Value valueForKey(std::string_view key) const;
  /// Sets an attribute, converted by `coercedValue`. Returns false and changes nothing if the key
  /// is unknown or the value cannot be converted. An equal value does not count as a change.
  bool setValueForKey(const Value& value, std::string_view key);

  /// The object of a to-one relationship; null if there is none.
  std::shared_ptr<ManagedObject> relatedObject(std::string_view relationship) const;
  /// Sets a to-one relationship and its inverse; null clears it. Returns false and changes nothing
  /// if the relationship is unknown or the object belongs to another entity or context.
  bool setRelatedObject(const std::shared_ptr<ManagedObject>& object,
                        std::string_view relationship);
  /// The objects of a to-many relationship by key, unsaved changes included. Empty if the store
  /// cannot be read.
  std::vector<std::shared_ptr<ManagedObject>> relatedObjects(std::string_view relationship) const;
  std::size_t countOfRelatedObjects(std::string_view relationship) const;

 protected:
  ManagedObject() = default;

 private:
  friend class ManagedObjectContext;
  /// Values that differ from the stored row, by slot.
  struct Changes {
    std::vector<std::pair<std::size_t, Value>> values;
    std::vector<std::pair<std::size_t, std::shared_ptr<ManagedObject>>> related;
  };
  Value valueInSlot(std::size_t slot) const;
  Value storedValue(std::size_t slot) const;
  const std::shared_ptr<ManagedObject>* pendingRelated(std::size_t slot) const;
  void setRelatedInSlot(const std::shared_ptr<ManagedObject>& object, std::size_t slot);
  void dropChanges(std::size_t slot);
  /// Call when the object leaves its context, so that objects do not own each other in a cycle.
  void dropRelations() {
    if (changes_) changes_->related.clear();
  }
  void noteChange();
  /// The stored key of a to-one relationship, ignoring unsaved changes; 0 for none.
  std::int64_t storedKey(std::size_t slot) const;

  std::shared_ptr<const EntityDescription> entity_;  ///< Keeps the model alive.
  ManagedObjectID objectID_;
  ManagedObjectContext* context_ = nullptr;
  RowSnapshot row_;
  std::unique_ptr<Changes> changes_;
};

}  // namespace vantrel
