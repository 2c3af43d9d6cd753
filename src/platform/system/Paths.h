#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace vantrel::paths {

inline constexpr std::string_view kApplicationGroup = "group.vantrel.vantrel";

// Base directories. None is created; `nullopt` if $HOME is needed but not set. Variables that are
// empty or relative paths count as not set.

/// $VANTREL_GROUP_CONTAINER, otherwise vantrel/group.vantrel.vantrel in the XDG data folder.
std::optional<std::filesystem::path> groupContainer();
/// The desktop's folder for documents, otherwise ~/Documents.
std::optional<std::filesystem::path> documentDirectory();
/// vantrel/ in the XDG folders for settings, caches and state.
std::optional<std::filesystem::path> configDirectory();
std::optional<std::filesystem::path> cacheDirectory();
std::optional<std::filesystem::path> stateDirectory();

/// Creates `directory` and its missing parents, each with mode 0700, and synchronises the parents.
/// Returns false, with errno, if that fails.
bool createPrivateDirectory(const std::filesystem::path& directory);

}  // namespace vantrel::paths
