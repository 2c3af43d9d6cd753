#include "objectstore/ManagedObject.h"

#include <algorithm>

#include "objectstore/ManagedObjectContext.h"
#include "objectstore/model/AttributeValues.h"

namespace vantrel {

ManagedObject::~ManagedObject() {
  if (context_) context_->forget(*this);
}

Value ManagedObject::storedValue(std::size_t slot) const {
  const auto type = entity_->attributes[slot].type;
  if (!isReadOnDemand(type)) return vantrel::valueInSlot(type, row_, slot);
  if (!context_ || objectID_.isTemporaryID()) return {};
  return context_->readBytes(*this, slot);
}

Value ManagedObject::valueInSlot(std::size_t slot) const {
  if (changes_) {
    for (const auto& [changed, value] : changes_->values) {
      if (changed == slot) return value;
    }
  }
  return storedValue(slot);
}

Value ManagedObject::valueForKey(std::string_view key) const {
  const auto slot = entity_->slotOfAttribute(key);
  return slot ? valueInSlot(*slot) : Value();
}

bool ManagedObject::setValueForKey(const Value& value, std::string_view key) {
  const auto slot = entity_->slotOfAttribute(key);
  if (!slot) return false;
  auto coerced = coercedValue(entity_->attributes[*slot].type, value);
  if (!coerced) return false;
  if (compareValues(*coerced, valueInSlot(*slot)) == 0) return true;
  dropChanges(*slot);
  if (compareValues(*coerced, storedValue(*slot)) != 0) {
    if (!changes_) changes_ = std::make_unique<Changes>();
    changes_->values.emplace_back(*slot, std::move(*coerced));
  }
  noteChange();
  return true;
}

void ManagedObject::dropChanges(std::size_t slot) {
  if (!changes_) return;
  const auto isOfSlot = [&](const auto& change) { return change.first == slot; };
  std::erase_if(changes_->values, isOfSlot);
  std::erase_if(changes_->related, isOfSlot);
  if (changes_->values.empty() && changes_->related.empty()) changes_.reset();
}

void ManagedObject::noteChange() {
  if (context_) context_->noteChange(*this);
}

std::int64_t ManagedObject::storedKey(std::size_t slot) const {
  return row_.isAbsent(slot) ? 0 : row_.integer(slot);
}

const std::shared_ptr<ManagedObject>* ManagedObject::pendingRelated(std::size_t slot) const {
  if (!changes_) return nullptr;
  for (const auto& [changed, object] : changes_->related) {
    if (changed == slot) return &object;
  }
  return nullptr;
}

std::shared_ptr<ManagedObject> ManagedObject::relatedObject(std::string_view relationship) const {
  const auto slot = entity_->slotOfToOne(relationship);
  if (!slot) return nullptr;
  if (const auto* pending = pendingRelated(*slot)) {
    const bool isGone = *pending && context_ && context_->isDeleted(**pending);
    return isGone ? nullptr : *pending;
  }
  const std::int64_t key = storedKey(*slot);
  const auto* destination = entity_->relationship(relationship)->destinationEntity;
  return key && context_ && destination ? context_->objectForKey(*destination, key) : nullptr;
}

void ManagedObject::setRelatedInSlot(const std::shared_ptr<ManagedObject>& object,
                                     std::size_t slot) {
  dropChanges(slot);
  const bool isAsStored = object ? !object->objectID_.isTemporaryID() &&
                                       object->objectID_.primaryKey() == storedKey(slot)
                                 : storedKey(slot) == 0;
  if (!isAsStored) {
    if (!changes_) changes_ = std::make_unique<Changes>();
    changes_->related.emplace_back(slot, object);
  }
  noteChange();
}

bool ManagedObject::setRelatedObject(const std::shared_ptr<ManagedObject>& object,
                                     std::string_view relationship) {
  const auto slot = entity_->slotOfToOne(relationship);
  if (!slot || !context_) return false;
  const auto& description = *entity_->relationship(relationship);
  const auto* destination = description.destinationEntity;
  if (object &&
      (!destination || object->context_ != context_ || !object->entity_->isKindOf(*destination))) {
    return false;
  }
  // In a one-to-one relationship, both objects lose their former partners.
  const auto inverse =
      destination ? destination->slotOfToOne(description.inverseName) : std::nullopt;
  if (inverse) {
    if (const auto before = relatedObject(relationship)) before->setRelatedInSlot({}, *inverse);
    if (object) {
      if (const auto other = object->relatedObject(description.inverseName)) {
        other->setRelatedInSlot({}, *slot);
      }
      object->setRelatedInSlot(shared_from_this(), *inverse);
    }
  }
  setRelatedInSlot(object, *slot);
  return true;
}

std::vector<std::shared_ptr<ManagedObject>> ManagedObject::relatedObjects(
    std::string_view relationship) const {
  const auto* description = entity_->relationship(relationship);
  if (!description || !description->isToMany || !context_) return {};
  auto objects = context_->relatedObjects(*this, *description);
  return objects ? std::move(*objects) : std::vector<std::shared_ptr<ManagedObject>>();
}

std::size_t ManagedObject::countOfRelatedObjects(std::string_view relationship) const {
  const auto* description = entity_->relationship(relationship);
  if (!description || !description->isToMany || !context_) return 0;
  return context_->countOfRelatedObjects(*this, *description);
}

}  // namespace vantrel
