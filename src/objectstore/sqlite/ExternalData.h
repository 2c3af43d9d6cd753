#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

/// Large values (attributes that say so) stand in their column behind a first byte that tells
/// whether they follow, or the name of a file that holds them. Other models keep them as they are,
/// and no kind of picture begins with either byte.

/// The folder beside a store that holds those files, with others that the platform keeps there.
std::filesystem::path supportFolder(const std::filesystem::path& storeUrl);
/// The file that a value of the store's with this name is kept in.
std::filesystem::path externalFile(const std::filesystem::path& storeUrl, std::string_view name);
/// The name, when the column's bytes are one; nothing when they are not, or would lead elsewhere.
std::optional<std::string> externalFileName(std::string_view stored);
/// The length of what a column holds in place of a value that has a file of its own.
inline constexpr std::size_t kExternalReferenceSize = 38;

/// The value that a column's bytes stand for; nothing when they, or the file, are not there.
std::optional<std::string> unwrappedBytes(std::string_view stored,
                                          const std::filesystem::path& storeUrl);

}  // namespace vantrel
