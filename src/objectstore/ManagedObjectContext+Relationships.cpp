#include <algorithm>
#include <utility>

#include "objectstore/ManagedObjectContext.h"
#include "objectstore/model/AttributeValues.h"
#include "objectstore/sqlite/SqliteStore.h"
#include "objectstore/sqlite/StoreError.h"

namespace vantrel {

Expected<ManagedObjectContext::Objects> ManagedObjectContext::relatedObjects(
    const ManagedObject& object, const RelationshipDescription& relationship) {
  Objects objects;
  const auto& model = std::as_const(*coordinator_->managedObjectModel());
  const auto* destination = model.entityNamed(relationship.destinationEntityName);
  if (!destination) return objects;
  const std::uint32_t table = tableOf(*destination);
  const auto inverse = slotOfToOne(*destination, relationship.inverseName);
  // Objects whose other end was set in memory are found there.
  const auto isMoved = [&](const ManagedObject& other) {
    return inverse && other.pendingRelated(*inverse) != nullptr;
  };
  SqliteStore* store = coordinator_->persistentStore();
  if (store && !object.objectID_.isTemporaryID()) {
    const auto fetched = store->fetchRelated(*object.entity_, relationship,
                                             object.objectID_.primaryKey(), [&](FetchedRow&& row) {
                                               auto other = objectForRow(std::move(row), table);
                                               if (!isDeleted(*other) && !isMoved(*other))
                                                 objects.push_back(std::move(other));
                                             });
    if (!fetched) return tl::unexpected(fetched.error());
  }
  for (const Pending* pending : {&inserted_, &updated_}) {
    for (auto entry = pending->lower_bound({table, 0});
         entry != pending->end() && entry->first.first == table; ++entry) {
      if (!isMoved(*entry->second)) continue;
      if (entry->second->pendingRelated(*inverse)->get() == &object) {
        objects.push_back(entry->second);
      }
    }
  }
  std::sort(objects.begin(), objects.end(), [](const auto& a, const auto& b) {
    const auto place = [](const ManagedObjectID& id) {
      return std::pair(id.temporaryNumber(), id.primaryKey());
    };
    return place(a->objectID_) < place(b->objectID_);
  });
  return objects;
}

std::size_t ManagedObjectContext::countOfRelatedObjects(
    const ManagedObject& object, const RelationshipDescription& relationship) {
  const auto& model = std::as_const(*coordinator_->managedObjectModel());
  const auto* destination = model.entityNamed(relationship.destinationEntityName);
  const std::uint32_t table = destination ? tableOf(*destination) : 0;
  const bool hasPending =
      destination && (hasPendingIn(inserted_, table) || hasPendingIn(updated_, table) ||
                      hasPendingIn(deleted_, table));
  SqliteStore* store = coordinator_->persistentStore();
  if (hasPending || !store) {
    const auto objects = relatedObjects(object, relationship);
    return objects ? objects->size() : 0;
  }
  if (object.objectID_.isTemporaryID()) return 0;
  return store->countRelated(*object.entity_, relationship, object.objectID_.primaryKey())
      .value_or(0);
}

Expected<std::vector<std::size_t>> ManagedObjectContext::countsOfRelatedObjects(
    const Objects& objects, std::string_view relationship) {
  std::vector<std::size_t> counts;
  if (objects.empty()) return counts;
  SqliteStore* store = coordinator_->persistentStore();
  if (!store) return tl::unexpected(coordinator_->storeFailure());
  const EntityDescription& entity = *objects.front()->entity_;
  const auto* description = entity.relationship(relationship);
  if (!description || !description->isToMany) {
    return tl::unexpected(
        storeError(StoreErrorCode::kInvalidRequest,
                   entity.name + " has no list \"" + std::string(relationship) + "\""));
  }
  const auto storage = store->relationshipStorage(entity, *description);
  if (!storage) return tl::unexpected(storage.error());
  if (storage->kind == RelationshipStorage::Kind::kUnsettled) {
    return tl::unexpected(storeError(
        StoreErrorCode::kUnsettledRelation,
        "the store does not tell which " + description->name + " belong to which " + entity.name));
  }
  const auto byKey = store->countsOfRelated(entity, *description);
  if (!byKey) return tl::unexpected(byKey.error());
  const auto& model = std::as_const(*coordinator_->managedObjectModel());
  const auto* destination = model.entityNamed(description->destinationEntityName);
  const std::uint32_t table = destination ? tableOf(*destination) : 0;
  const bool hasPending = hasPendingIn(inserted_, table) || hasPendingIn(updated_, table) ||
                          hasPendingIn(deleted_, table);
  counts.reserve(objects.size());
  for (const auto& object : objects) {
    if (hasPending) {
      counts.push_back(countOfRelatedObjects(*object, *description));
      continue;
    }
    const auto found = byKey->find(object->objectID_.primaryKey());
    counts.push_back(found == byKey->end() ? 0 : found->second);
  }
  return counts;
}

DeleteRule ManagedObjectContext::deleteRule(const EntityDescription& entity,
                                            const RelationshipDescription& relationship) const {
  SqliteStore* store = coordinator_->persistentStore();
  if (!store || !relationship.isToMany) return relationship.deleteRule;
  // A foreign store may have rules of its own.
  const auto storage = store->relationshipStorage(entity, relationship);
  return storage && storage->hasPairs() ? storage->deleteRule : relationship.deleteRule;
}

void ManagedObjectContext::deleteObject(const std::shared_ptr<ManagedObject>& object) {
  if (!object || object->context_ != this || isDeleted(*object)) return;
  if (object->objectID_.isTemporaryID()) {
    inserted_.erase({object->table_, object->objectID_.temporaryNumber()});
    applyDeleteRules(*object);
    detach(*object);
    return;
  }
  const std::pair place(object->table_, object->objectID_.primaryKey());
  updated_.erase(place);
  deleted_.emplace(place, object);
  applyDeleteRules(*object);
}

void ManagedObjectContext::applyDeleteRules(const ManagedObject& object) {
  const auto& model = std::as_const(*coordinator_->managedObjectModel());
  for (const auto& relationship : object.entity_->relationships) {
    const DeleteRule rule = deleteRule(*object.entity_, relationship);
    if (rule != DeleteRule::kCascade && rule != DeleteRule::kNullify) continue;
    Objects others;
    if (relationship.isToMany) {
      auto related = relatedObjects(object, relationship);
      if (related) {
        others = std::move(*related);
      } else {
        deletionFailure_ = related.error();
      }
    } else if (auto other = object.relatedObject(relationship.name)) {
      others.push_back(std::move(other));
    }
    const auto* destination = model.entityNamed(relationship.destinationEntityName);
    const auto inverse =
        destination ? slotOfToOne(*destination, relationship.inverseName) : std::nullopt;
    for (const auto& other : others) {
      if (rule == DeleteRule::kCascade) {
        deleteObject(other);
      } else if (inverse) {
        other->setRelatedInSlot({}, *inverse);
      }
    }
  }
}

Expected<void> ManagedObjectContext::checkDeletions() {
  if (deletionFailure_) return tl::unexpected(*deletionFailure_);
  for (const auto& [place, object] : deleted_) {
    for (const auto& relationship : object->entity_->relationships) {
      if (!relationship.isToMany ||
          deleteRule(*object->entity_, relationship) != DeleteRule::kDeny) {
        continue;
      }
      const auto others = relatedObjects(*object, relationship);
      if (!others) return tl::unexpected(others.error());
      if (others->empty()) continue;
      return tl::unexpected(storeError(StoreErrorCode::kDeletionDenied,
                                       "a " + object->entity_->name + " still has " +
                                           relationship.name + " and cannot be deleted"));
    }
  }
  return {};
}

}  // namespace vantrel
