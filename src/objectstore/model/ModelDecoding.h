#pragma once

#include <string>
#include <vector>

#include "base/Error.h"
#include "objectstore/model/EntityDescription.h"
#include "platform/archive/KeyedUnarchiver.h"

namespace vantrel {

/// The entities of an archived model with their own properties only, in no order of meaning.
Expected<std::vector<EntityDescription>> decodedEntities(const KeyedUnarchiver::Node& model);

/// Gives each entity its ancestors' properties and puts the tree in the order of entity numbers. An
/// error when names repeat, when an ancestor is missing, or when entities descend from themselves.
Expected<std::vector<EntityDescription>> orderedEntities(std::vector<EntityDescription> entities);

}  // namespace vantrel
