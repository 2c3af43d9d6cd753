#pragma once

#include <filesystem>
#include <memory>

#include "base/Error.h"
#include "objectstore/ManagedObjectContext.h"

namespace vantrel::cli {

/// Where the store lies; kExitMissing, and nothing is made, when there is none.
Expected<std::filesystem::path> existingStore();

/// The context over the existing store, which answered a first fetch.
Expected<ManagedObjectContext*> contextForReading();
/// The same for commands that read, then write: creates the store if there is none, and keeps other
/// programs from writing until the command saves or exits.
Expected<ManagedObjectContext*> contextForWriting();

/// Takes a record out of its store.
Expected<void> removeFromStore(const std::shared_ptr<ManagedObject>& object);

}  // namespace vantrel::cli
