#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

/// Attributes with external storage prefix their column's bytes with 1, followed by the value, or
/// with 2, followed by the 36 characters and the zero of the name of a file with the value. A store
/// of another model may hold values without a prefix: no picture format begins with either byte.

/// The folder beside a store with its external files.
std::filesystem::path supportFolder(const std::filesystem::path& storeUrl);
/// The external file of this name.
std::filesystem::path externalFile(const std::filesystem::path& storeUrl, std::string_view name);
/// The file name in a column's bytes; `nullopt` if they hold no name of a file in the folder.
std::optional<std::string> externalFileName(std::span<const std::byte> stored);
/// The size of a column with the name of an external file.
inline constexpr std::int64_t kExternalReferenceSize = 38;

/// The bytes to store in the column for a value.
std::vector<std::byte> wrappedBytes(std::span<const std::byte> value);

/// The value for a column's bytes, read from the external file if they name one. `nullopt` if they
/// are empty or the file cannot be read.
std::optional<std::vector<std::byte>> unwrappedBytes(std::span<const std::byte> stored,
                                                     const std::filesystem::path& storeUrl);

}  // namespace vantrel
