#pragma once

#include <string>
#include <vector>

#include "base/Error.h"
#include "objectstore/model/EntityDescription.h"
#include "platform/archive/KeyedUnarchiver.h"

namespace vantrel {

/// Decodes the entities of an archived model, unordered and without inherited properties.
Expected<std::vector<EntityDescription>> decodedEntities(const KeyedUnarchiver::Node& model);

/// Adds the inherited properties to each entity and sorts the tree by entity number (see
/// ManagedObjectModel::entities). Fails if names repeat, an ancestor is missing, or the tree has a
/// cycle.
Expected<std::vector<EntityDescription>> orderedEntities(std::vector<EntityDescription> entities);

}  // namespace vantrel
