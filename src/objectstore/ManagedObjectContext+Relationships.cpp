#include <algorithm>
#include <utility>

#include "objectstore/ManagedObjectContext.h"
#include "objectstore/sqlite/SqliteStore.h"
#include "objectstore/sqlite/StoreError.h"

namespace vantrel {

Expected<ManagedObjectContext::Objects> ManagedObjectContext::relatedObjects(
    const ManagedObject& object, const RelationshipDescription& relationship) {
  Objects objects;
  const auto* destination = relationship.destinationEntity;
  if (!destination) return objects;
  const auto inverse = destination->slotOfToOne(relationship.inverseName);
  const auto isMoved = [&](const ManagedObject& other) {
    return inverse && other.pendingRelated(*inverse) != nullptr;
  };
  SqliteStore* store = coordinator_->persistentStore();
  if (store && !object.objectID_.isTemporaryID()) {
    const auto fetched = store->fetchRelated(*object.entity_, relationship,
                                             object.objectID_.primaryKey(), [&](FetchedRow&& row) {
                                               auto other = objectForRow(std::move(row));
                                               if (!isDeleted(*other) && !isMoved(*other))
                                                 objects.push_back(std::move(other));
                                               return true;
                                             });
    if (!fetched) return tl::unexpected(fetched.error());
  }
  for (const Pending* pending : {&inserted_, &updated_}) {
    const std::size_t root = destination->root->index;
    for (auto entry = pending->lower_bound({root, 0});
         entry != pending->end() && entry->first.first == root; ++entry) {
      const auto& other = entry->second;
      if (isMoved(*other) && other->pendingRelated(*inverse)->get() == &object) {
        objects.push_back(other);
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
  const auto* destination = relationship.destinationEntity;
  SqliteStore* store = coordinator_->persistentStore();
  if (!store || (destination && hasPending(*destination))) {
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
        "cannot determine which " + description->name + " belong to which " + entity.name));
  }
  const auto byKey = store->countsOfRelated(entity, *description);
  if (!byKey) return tl::unexpected(byKey.error());
  const auto* destination = description->destinationEntity;
  const bool isPending = destination && hasPending(*destination);
  counts.reserve(objects.size());
  for (const auto& object : objects) {
    if (isPending) {
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
  // A foreign store may have other rules.
  const auto storage = store->relationshipStorage(entity, relationship);
  return storage && storage->hasPairs() ? storage->deleteRule : relationship.deleteRule;
}

void ManagedObjectContext::deleteObject(const std::shared_ptr<ManagedObject>& object) {
  if (!object || object->context_ != this || isDeleted(*object)) return;
  if (object->objectID_.isTemporaryID()) {
    inserted_.erase(placeOf(*object));
    applyDeleteRules(*object);
    detach(*object);
    return;
  }
  updated_.erase(placeOf(*object));
  deleted_.emplace(placeOf(*object), object);
  applyDeleteRules(*object);
}

void ManagedObjectContext::applyDeleteRules(const ManagedObject& object) {
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
    const auto* destination = relationship.destinationEntity;
    const auto inverse =
        destination ? destination->slotOfToOne(relationship.inverseName) : std::nullopt;
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
