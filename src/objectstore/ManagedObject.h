#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "objectstore/EntityDescription.h"
#include "objectstore/ManagedObjectID.h"
#include "objectstore/Value.h"

namespace vantrel {

class ManagedObjectContext;

/// One stored record, reached by key or through a subclass's accessors. Its context makes it and
/// keeps one object per row. After its context was reset or destroyed, or the object deleted and
/// saved, it keeps its last values and can no longer be saved. Main thread.
class ManagedObject : public std::enable_shared_from_this<ManagedObject> {
 public:
  virtual ~ManagedObject() = default;
  ManagedObject(const ManagedObject&) = delete;
  ManagedObject& operator=(const ManagedObject&) = delete;

  const EntityDescription& entity() const { return *entity_; }
  const ManagedObjectID& objectID() const { return objectID_; }
  ManagedObjectContext* managedObjectContext() const { return context_; }

  /// Called once when the object is inserted, never when it is loaded.
  virtual void awakeFromInsert() {}

  /// An attribute's value; absent for an unknown key.
  const Value& valueForKey(std::string_view key) const;
  /// False, changing nothing, for an unknown key or a value of another kind. Integers are taken for
  /// doubles; doubles are narrowed for single-precision attributes. Setting an equal value is no
  /// change.
  bool setValueForKey(const Value& value, std::string_view key);

  /// The object at the other end of a to-one relationship; null when there is none.
  std::shared_ptr<ManagedObject> relatedObject(std::string_view relationship) const;
  /// Sets a to-one relationship (and its inverse); null clears it. False for an unknown one.
  bool setRelatedObject(const std::shared_ptr<ManagedObject>& object,
                        std::string_view relationship);
  /// The objects of a to-many relationship, by key; pending changes count.
  std::vector<std::shared_ptr<ManagedObject>> relatedObjects(std::string_view relationship) const;
  std::size_t countOfRelatedObjects(std::string_view relationship) const;

 protected:
  ManagedObject() = default;

 private:
  friend class ManagedObjectContext;
  const EntityDescription* entity_ = nullptr;
  ManagedObjectID objectID_;
  ManagedObjectContext* context_ = nullptr;
};

}  // namespace vantrel
