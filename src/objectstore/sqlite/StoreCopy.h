#pragma once

#include <filesystem>

#include "objectstore/sqlite/StoreDraft.h"

namespace vantrel {

/// Fails if a store at `to` would store its pictures in the support folder of the store at `from`,
/// or of another store beside `to`: removing a plan from one would remove the pictures of the
/// other. Throws StoreFailure.
void checkOwnSupportFolder(const std::filesystem::path& from, const std::filesystem::path& to);

/// Copies the store `file`, its write-ahead log included, and its support folder into a draft. The
/// copy has every picture that its records refer to, unless the old store lacks it too. If another
/// process removes some concurrently, copies again, and fails with kLocked after a few attempts.
/// Changes, creates and removes no file beside the old store. `file` must not be a symbolic link.
/// Throws StoreFailure and std::filesystem::filesystem_error.
void copyStore(const std::filesystem::path& file, StoreDraft& draft);

}  // namespace vantrel
