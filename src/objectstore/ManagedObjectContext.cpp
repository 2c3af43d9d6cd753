#include "objectstore/ManagedObjectContext.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "objectstore/model/AttributeValues.h"
#include "objectstore/sqlite/SqliteStore.h"
#include "objectstore/sqlite/StoreError.h"

namespace vantrel {

namespace {

/// Stored objects by key, followed by unsaved ones in the order of their creation.
bool comesBefore(const ManagedObject& a, const ManagedObject& b) {
  const auto& first = a.objectID();
  const auto& second = b.objectID();
  if (first.isTemporaryID() != second.isTemporaryID()) return second.isTemporaryID();
  return first.isTemporaryID() ? first.temporaryNumber() < second.temporaryNumber()
                               : first.primaryKey() < second.primaryKey();
}

bool comesBefore(const ManagedObject& a, const ManagedObject& b,
                 const std::vector<SortDescriptor>& descriptors) {
  for (const auto& [key, ascending] : descriptors) {
    const int order = compareValues(a.valueForKey(key), b.valueForKey(key));
    if (order != 0) return (order < 0) == ascending;
  }
  return comesBefore(a, b);
}

}  // namespace

ManagedObjectContext::ManagedObjectContext(std::shared_ptr<PersistentStoreCoordinator> coordinator)
    : coordinator_(std::move(coordinator)),
      registered_(coordinator_->managedObjectModel()->entities().size()) {}

ManagedObjectContext::~ManagedObjectContext() {
  reset();
}

ManagedObjectContext::Place ManagedObjectContext::placeOf(const ManagedObject& object) {
  const ManagedObjectID& id = object.objectID_;
  return {object.entity_->root->index, id.isTemporaryID() ? id.temporaryNumber() : id.primaryKey()};
}

std::shared_ptr<ManagedObject> ManagedObjectContext::makeObject(const EntityDescription& entity) {
  struct PlainObject : ManagedObject {};
  std::shared_ptr<ManagedObject> object =
      entity.makeObject ? entity.makeObject() : std::make_shared<PlainObject>();
  object->entity_ = {coordinator_->managedObjectModel(), &entity};
  object->context_ = this;
  return object;
}

std::shared_ptr<ManagedObject> ManagedObjectContext::insertNewObject(std::string_view entityName) {
  const auto* entity = std::as_const(*coordinator_->managedObjectModel()).entityNamed(entityName);
  if (!entity || entity->isAbstract) return nullptr;
  auto object = makeObject(*entity);
  object->objectID_ = ManagedObjectID::temporaryID(entity->name);
  inserted_[placeOf(*object)] = object;
  for (const auto& attribute : entity->attributes) {
    object->setValueForKey(attribute.defaultValue, attribute.name);
  }
  object->awakeFromInsert();
  return object;
}

std::shared_ptr<ManagedObject> ManagedObjectContext::objectForRow(FetchedRow&& row) {
  const auto [entry, isNew] =
      registered_[row.entity->root->index].try_emplace(row.objectID.primaryKey(), nullptr);
  if (!isNew) {
    auto object = entry->second->shared_from_this();
    if (!object->changes_ && !isDeleted(*object)) object->row_ = std::move(row.values);
    return object;
  }
  auto object = makeObject(*row.entity);
  object->objectID_ = row.objectID;
  object->row_ = std::move(row.values);
  entry->second = object.get();
  return object;
}

bool ManagedObjectContext::hasPending(const EntityDescription& entity) const {
  const auto isIn = [&](const Pending& pending) {
    const auto first = pending.lower_bound({entity.root->index, 0});
    return first != pending.end() && first->first.first == entity.root->index;
  };
  return isIn(inserted_) || isIn(updated_) || isIn(deleted_);
}

Expected<const EntityDescription*> ManagedObjectContext::checkedEntity(
    const FetchRequest& request) const {
  if (!coordinator_->persistentStore()) return tl::unexpected(coordinator_->storeFailure());
  const auto& model = std::as_const(*coordinator_->managedObjectModel());
  if (const auto* entity = model.entityNamed(request.entityName)) return entity;
  return tl::unexpected(storeError(StoreErrorCode::kInvalidRequest,
                                   "the model has no entity \"" + request.entityName + "\""));
}

ManagedObjectContext::Objects ManagedObjectContext::matchingPendingObjects(
    const FetchRequest& request, const EntityDescription& entity) const {
  const auto& predicate = request.predicate;
  const auto* attribute = predicate ? entity.attribute(predicate->key) : nullptr;
  const auto wanted = attribute ? coercedValue(attribute->type, predicate->value) : std::nullopt;
  Objects objects;
  for (const Pending* pending : {&inserted_, &updated_}) {
    for (const auto& [place, object] : *pending) {
      if (!object->entity_->isKindOf(entity)) continue;
      if (predicate &&
          !matches(predicate->op, object->valueForKey(predicate->key), wanted.value_or(Value()))) {
        continue;
      }
      objects.push_back(object);
    }
  }
  return objects;
}

Expected<ManagedObjectContext::Objects> ManagedObjectContext::executeFetchRequest(
    const FetchRequest& request) {
  const auto entity = checkedEntity(request);
  if (!entity) return tl::unexpected(entity.error());
  const bool isPending = hasPending(**entity);
  // Rows of objects with unsaved changes are skipped: the objects in memory count instead.
  const std::size_t limit =
      request.fetchLimit == 0 ? 0 : request.fetchLimit + updated_.size() + deleted_.size();
  Objects stored;
  const auto fetched =
      coordinator_->persistentStore()->fetch(request, limit, [&](FetchedRow&& row) {
        const Place place(row.entity->root->index, row.objectID.primaryKey());
        if (!isPending || !(updated_.contains(place) || deleted_.contains(place))) {
          stored.push_back(objectForRow(std::move(row)));
        }
        return true;
      });
  if (!fetched) return tl::unexpected(fetched.error());
  if (isPending) {
    const auto order = [&](const auto& a, const auto& b) {
      return comesBefore(*a, *b, request.sortDescriptors);
    };
    Objects pending = matchingPendingObjects(request, **entity);
    std::sort(pending.begin(), pending.end(), order);
    Objects merged;
    merged.reserve(stored.size() + pending.size());
    std::merge(stored.begin(), stored.end(), pending.begin(), pending.end(),
               std::back_inserter(merged), order);
    stored = std::move(merged);
  }
  if (request.fetchLimit > 0 && stored.size() > request.fetchLimit) {
    stored.resize(request.fetchLimit);
  }
  return stored;
}

Expected<void> ManagedObjectContext::enumerateFetchRequest(const FetchRequest& request,
                                                           const ObjectVisitor& visit) {
  const auto entity = checkedEntity(request);
  if (!entity) return tl::unexpected(entity.error());
  if (!hasPending(**entity)) {
    return coordinator_->persistentStore()->fetch(
        request, request.fetchLimit,
        [&](FetchedRow&& row) { return visit(objectForRow(std::move(row))); });
  }
  const auto objects = executeFetchRequest(request);
  if (!objects) return tl::unexpected(objects.error());
  for (const auto& object : *objects) {
    if (!visit(object)) break;
  }
  return {};
}

Expected<std::size_t> ManagedObjectContext::countForFetchRequest(const FetchRequest& request) {
  const auto entity = checkedEntity(request);
  if (!entity) return tl::unexpected(entity.error());
  SqliteStore& store = *coordinator_->persistentStore();
  if (!hasPending(**entity)) return store.count(request);
  const auto keys = store.fetchKeys(request);
  if (!keys) return tl::unexpected(keys.error());
  const auto untouched = std::count_if(keys->begin(), keys->end(), [&](std::int64_t key) {
    const Place place((*entity)->root->index, key);
    return !updated_.contains(place) && !deleted_.contains(place);
  });
  return static_cast<std::size_t>(untouched) + matchingPendingObjects(request, **entity).size();
}

Expected<std::shared_ptr<ManagedObject>> ManagedObjectContext::objectWithURI(std::string_view uri) {
  const auto fail = [](std::string description) {
    return tl::unexpected(storeError(StoreErrorCode::kInvalidURI, std::move(description)));
  };
  SqliteStore* store = coordinator_->persistentStore();
  if (!store) return tl::unexpected(coordinator_->storeFailure());
  const auto parsed = parsePermanentObjectURI(uri);
  if (!parsed) return fail("this does not name a stored object");
  if (parsed->storeUuid != store->metadata().uuid) return fail("the object is of another store");
  const auto entity = store->entityForStoredName(parsed->entityName);
  if (!entity) return tl::unexpected(entity.error());
  if (!*entity) return fail("the store has no such kind of object");
  std::shared_ptr<ManagedObject> object;
  const auto fetched = store->fetchRow(**entity, parsed->primaryKey, [&](FetchedRow&& row) {
    object = objectForRow(std::move(row));
    return true;
  });
  if (!fetched) return tl::unexpected(fetched.error());
  return object && isDeleted(*object) ? nullptr : object;
}

std::shared_ptr<ManagedObject> ManagedObjectContext::objectForKey(const EntityDescription& entity,
                                                                  std::int64_t key) {
  const std::size_t root = entity.root->index;
  if (deleted_.contains({root, key})) return nullptr;
  const auto known = registered_[root].find(key);
  if (known != registered_[root].end()) return known->second->shared_from_this();
  SqliteStore* store = coordinator_->persistentStore();
  std::shared_ptr<ManagedObject> object;
  if (!store) return object;
  const auto fetched = store->fetchRow(entity, key, [&](FetchedRow&& row) {
    object = objectForRow(std::move(row));
    return true;
  });
  return fetched ? object : nullptr;
}

bool ManagedObjectContext::isDeleted(const ManagedObject& object) const {
  return !object.objectID_.isTemporaryID() && deleted_.contains(placeOf(object));
}

Value ManagedObjectContext::readBytes(const ManagedObject& object, std::size_t slot) const {
  SqliteStore* store = coordinator_->persistentStore();
  if (!store) return {};
  auto bytes = store->readBytes(*object.entity_, slot, object.objectID_.primaryKey());
  return bytes ? std::move(*bytes) : Value();
}

void ManagedObjectContext::noteChange(ManagedObject& object) {
  if (object.objectID_.isTemporaryID() || isDeleted(object)) return;
  if (object.changes_) {
    updated_.try_emplace(placeOf(object), object.shared_from_this());
  } else {
    updated_.erase(placeOf(object));
  }
}

void ManagedObjectContext::forget(const ManagedObject& object) {
  auto& objects = registered_[object.entity_->root->index];
  const auto entry = objects.find(object.objectID_.primaryKey());
  if (entry != objects.end() && entry->second == &object) objects.erase(entry);
}

bool ManagedObjectContext::hasChanges() const {
  return !inserted_.empty() || !updated_.empty() || !deleted_.empty();
}

void ManagedObjectContext::reset() {
  unlockStore();
  // Detach every object before the first one is destroyed, since its destructor calls `forget`.
  const Pending inserted = std::exchange(inserted_, {});
  const Pending updated = std::exchange(updated_, {});
  const Pending deleted = std::exchange(deleted_, {});
  for (const auto& [place, object] : inserted) object->context_ = nullptr;
  for (auto& objects : registered_) {
    for (const auto& [key, object] : objects) object->context_ = nullptr;
    objects.clear();
  }
  for (const Pending* pending : {&inserted, &updated, &deleted}) {
    for (const auto& [place, object] : *pending) object->dropRelations();
  }
  deletionFailure_.reset();
}

}  // namespace vantrel
