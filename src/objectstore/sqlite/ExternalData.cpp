#include "objectstore/sqlite/ExternalData.h"

#include <unistd.h>

#include <algorithm>
#include <array>

#include "base/FileDescriptor.h"

namespace vantrel {

namespace fs = std::filesystem;

namespace {

constexpr std::byte kInline{1};
constexpr std::byte kFile{2};
constexpr std::size_t kNameLength = 36;

std::optional<std::vector<std::byte>> contentOfFile(const fs::path& path) {
  const auto file = openRegularFile(path.c_str());
  if (!file) return std::nullopt;
  std::vector<std::byte> content;
  std::array<std::byte, 1 << 16> buffer;
  ssize_t count = 0;
  while ((count = ::read(file.number(), buffer.data(), buffer.size())) > 0) {
    content.insert(content.end(), buffer.begin(), buffer.begin() + count);
  }
  return count == 0 ? std::optional(std::move(content)) : std::nullopt;
}

}  // namespace

fs::path supportFolder(const fs::path& storeUrl) {
  return storeUrl.parent_path() / ("." + storeUrl.stem().string() + "_SUPPORT");
}

fs::path externalFile(const fs::path& storeUrl, std::string_view name) {
  return supportFolder(storeUrl) / "_EXTERNAL_DATA" / name;
}

std::optional<std::string> externalFileName(std::span<const std::byte> stored) {
  if (stored.size() <= kNameLength || stored.front() != kFile) return std::nullopt;
  const std::string name(reinterpret_cast<const char*>(&stored[1]), kNameLength);
  const bool isName = name.find('/') == std::string::npos && name.find('\0') == std::string::npos;
  return isName ? std::optional(name) : std::nullopt;
}

std::vector<std::byte> wrappedBytes(std::span<const std::byte> value) {
  std::vector<std::byte> stored(value.size() + 1, kInline);
  std::copy(value.begin(), value.end(), stored.begin() + 1);
  return stored;
}

std::optional<std::vector<std::byte>> unwrappedBytes(std::span<const std::byte> stored,
                                                     const fs::path& storeUrl) {
  if (stored.empty()) return std::nullopt;
  if (stored.front() == kFile) {
    const auto name = externalFileName(stored);
    return name ? contentOfFile(externalFile(storeUrl, *name)) : std::nullopt;
  }
  if (stored.front() == kInline) stored = stored.subspan(1);
  return std::vector<std::byte>(stored.begin(), stored.end());
}

}  // namespace vantrel
