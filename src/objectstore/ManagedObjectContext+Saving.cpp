#include <utility>

#include "objectstore/ManagedObjectContext.h"
#include "objectstore/model/AttributeValues.h"
#include "objectstore/sqlite/SqliteStore.h"

namespace vantrel {

RowChange ManagedObjectContext::changeOf(
    const ManagedObject& object,
    const std::map<const ManagedObject*, std::size_t>& inserted) const {
  RowChange change{
      object.entity_.get(), object.objectID_.primaryKey(), object.row_.version(), {}, {}};
  if (!object.changes_) return change;
  change.values = object.changes_->values;
  for (const auto& [slot, related] : object.changes_->related) {
    RowReference reference;
    if (related && !isDeleted(*related)) {
      reference.entity = related->entity_.get();
      reference.key = related->objectID_.primaryKey();
      if (const auto found = inserted.find(related.get()); found != inserted.end()) {
        reference.inserted = found->second;
      }
    }
    change.references.emplace_back(slot, reference);
  }
  return change;
}

ChangeSet ManagedObjectContext::changeSet() const {
  std::map<const ManagedObject*, std::size_t> positions;
  for (const auto& [place, object] : inserted_) positions.emplace(object.get(), positions.size());
  ChangeSet changes;
  for (const auto& [place, object] : inserted_) {
    changes.inserted.push_back(changeOf(*object, positions));
  }
  for (const auto& [place, object] : updated_) {
    changes.updated.push_back(changeOf(*object, positions));
  }
  for (const auto& [place, object] : deleted_) {
    changes.deleted.push_back(
        {object->entity_.get(), object->objectID_.primaryKey(), object->row_.version(), {}, {}});
  }
  return changes;
}

Expected<void> ManagedObjectContext::lockStore() {
  SqliteStore* store = coordinator_->persistentStore();
  return store ? store->lock() : tl::unexpected(coordinator_->storeFailure());
}

Expected<void> ManagedObjectContext::freezeStore() {
  SqliteStore* store = coordinator_->persistentStore();
  return store ? store->freeze() : tl::unexpected(coordinator_->storeFailure());
}

void ManagedObjectContext::unlockStore() {
  if (SqliteStore* store = coordinator_->persistentStore()) store->unlock();
}

Expected<void> ManagedObjectContext::save() {
  auto saved = hasChanges() ? saveChanges() : Expected<void>();
  unlockStore();
  return saved;
}

Expected<void> ManagedObjectContext::saveChanges() {
  SqliteStore* store = coordinator_->persistentStore();
  if (!store) return tl::unexpected(coordinator_->storeFailure());
  if (auto allowed = checkDeletions(); !allowed) return allowed;
  const auto keys = store->save(changeSet());
  if (!keys) return tl::unexpected(keys.error());

  const Pending inserted = std::exchange(inserted_, {});
  const Pending updated = std::exchange(updated_, {});
  const Pending deleted = std::exchange(deleted_, {});
  // Assign all identifiers first: `settle` reads those of related objects.
  auto key = keys->begin();
  for (const auto& [place, object] : inserted) {
    object->objectID_ =
        ManagedObjectID::permanentID(store->metadata().uuid, object->entity_->name, *key++);
    registered_[object->entity_->root->index][object->objectID_.primaryKey()] = object.get();
  }
  for (const auto& [place, object] : inserted) settle(*object, 1);
  for (const auto& [place, object] : updated) settle(*object, object->row_.version() + 1);
  for (const auto& [place, object] : deleted) detach(*object);
  return {};
}

void ManagedObjectContext::settle(ManagedObject& object, std::int64_t version) {
  const EntityDescription& entity = *object.entity_;
  const std::size_t slotCount = entity.slotCount();
  RowBuilder row(slotCount);
  for (std::size_t slot = 0; slot < slotCount; ++slot) {
    if (slot < entity.attributes.size()) {
      if (isReadOnDemand(entity.attributes[slot].type)) continue;
      setValueInSlot(object.valueInSlot(slot), row, slot);
      continue;
    }
    const auto* pending = object.pendingRelated(slot);
    const std::int64_t key = !pending   ? object.storedKey(slot)
                             : *pending ? (*pending)->objectID_.primaryKey()
                                        : 0;
    if (key) row.setInteger(slot, key);
  }
  object.row_ = row.finish(version);
  object.changes_.reset();
}

void ManagedObjectContext::detach(ManagedObject& object) {
  forget(object);
  object.context_ = nullptr;
  object.dropRelations();
}

}  // namespace vantrel
