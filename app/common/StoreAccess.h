#pragma once

#include <filesystem>
#include <memory>

#include "base/Error.h"
#include "objectstore/ManagedObjectContext.h"

namespace vantrel {

/// The path of the store. Creates nothing: kExitMissing if there is no store, or only an empty
/// file, which opening would turn into one. A store that cannot be read counts as existing: opening
/// it reports why.
Expected<std::filesystem::path> existingStore();

/// The context over the existing store, after a first fetch succeeded.
Expected<ManagedObjectContext*> contextForReading();
/// The same for commands that read, then write: creates the store if there is none, and keeps other
/// programs from writing until the command saves or exits.
Expected<ManagedObjectContext*> contextForWriting();

/// Takes a record out of its store.
Expected<void> removeFromStore(const std::shared_ptr<ManagedObject>& object);

}  // namespace vantrel
