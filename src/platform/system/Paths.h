#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace vantrel::paths {

/// The name of the application group, and the shared container it names.
inline constexpr std::string_view kApplicationGroup = "group.vantrel.vantrel";

/// $VANTREL_GROUP_CONTAINER, else group.vantrel.vantrel under the data home; nothing when neither
/// it nor $HOME is set. Creates nothing. Environment variables that are empty or relative count as
/// unset.
std::optional<std::filesystem::path> groupContainer();
/// The user's documents: the XDG folder, else ~/Documents.
std::optional<std::filesystem::path> documentDirectory();
/// vantrel/ under the XDG config, cache and state homes.
std::optional<std::filesystem::path> configDirectory();
std::optional<std::filesystem::path> cacheDirectory();
std::optional<std::filesystem::path> stateDirectory();

/// Creates the folder and its missing parents, each 0700, and synchronises the parents. False, with
/// errno, if that fails.
bool createPrivateDirectory(const std::filesystem::path& directory);

}  // namespace vantrel::paths
