#pragma once

#include <filesystem>
#include <memory>

#include "base/Error.h"
#include "objectstore/ManagedObjectContext.h"

namespace vantrel {

/// Returns the path of the store; creates nothing. Fails with kExitMissing if there is no store or
/// only an empty file. A store that cannot be read counts as existing: opening it reports why.
Expected<std::filesystem::path> existingStore();

/// Returns the context of the existing store, which is opened and was read from once.
Expected<ManagedObjectContext*> contextForReading();
/// The same for commands that write: creates the store if there is none, and locks it until the
/// command saves or exits.
Expected<ManagedObjectContext*> contextForWriting();

/// Deletes the record and saves.
Expected<void> removeFromStore(const std::shared_ptr<ManagedObject>& object);

}  // namespace vantrel
