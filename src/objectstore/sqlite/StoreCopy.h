#pragma once

#include <filesystem>

#include "objectstore/sqlite/StoreDraft.h"

namespace vantrel {

/// Fails if a store at `to` would store its pictures in the support folder of the store at `from`,
/// or of another store beside `to`: removing a plan from one would remove the pictures of the
/// other. Throws StoreFailure.
void checkOwnSupportFolder(const std::filesystem::path& from, const std::filesystem::path& to);

/// Copies a store, its write-ahead log included, and its support folder into the draft of another.
/// The copy has every picture that its records name, unless the old store lacks it too: if another
/// program removes some at the same time, copies again, and fails with kLocked after a few
/// attempts. The old store is only read: no file is changed, created or removed beside it. `file`
/// is no symbolic link. Throws what StoreConnection throws, StoreFailure and
/// std::filesystem::filesystem_error.
void copyStore(const std::filesystem::path& file, StoreDraft& draft);

}  // namespace vantrel
