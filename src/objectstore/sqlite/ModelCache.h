#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include "objectstore/model/ManagedObjectModel.h"
#include "platform/archive/PropertyList.h"

namespace vantrel {

/// Z_MODELCACHE holds the model of a store for readers that do not have the model's file: a keyed
/// archive, compressed as raw DEFLATE.

/// Decodes Z_CONTENT. Null if it is damaged.
std::unique_ptr<ManagedObjectModel> modelFromCache(std::span<const std::byte> content);

/// Z_CONTENT for a store of `model`. Empty if the model was not read from a file.
Data modelCacheContent(const ManagedObjectModel& model);

}  // namespace vantrel
