#pragma once

#include <filesystem>

#include "objectstore/sqlite/StoreDraft.h"

namespace vantrel {

/// Copies what a store holds, its write-ahead log included, and its support folder into the draft
/// of another. The old one is only read: no file is changed, made or removed beside it. Throws what
/// StoreConnection throws, StoreFailure and std::filesystem::filesystem_error.
void copyStore(const std::filesystem::path& from, StoreDraft& draft);

}  // namespace vantrel
