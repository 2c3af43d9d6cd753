#include "objectstore/sqlite/ExternalData.h"

#include <unistd.h>

#include <array>

#include "base/FileDescriptor.h"

namespace vantrel {

namespace fs = std::filesystem;

namespace {

constexpr char kInline = 1;
constexpr char kFile = 2;
constexpr std::size_t kNameLength = 36;

}  // namespace

fs::path supportFolder(const fs::path& storeUrl) {
  return storeUrl.parent_path() / ("." + storeUrl.stem().string() + "_SUPPORT");
}

fs::path externalFile(const fs::path& storeUrl, std::string_view name) {
  return supportFolder(storeUrl) / "_EXTERNAL_DATA" / name;
}

std::optional<std::string> externalFileName(std::string_view stored) {
  if (stored.empty() || stored.front() != kFile) return std::nullopt;
  const std::string name(stored.substr(1, kNameLength));
  const bool isName = name.size() == kNameLength && name.find('/') == std::string::npos &&
                      name.find('\0') == std::string::npos;
  return isName ? std::optional(name) : std::nullopt;
}

std::optional<std::string> unwrappedBytes(std::string_view stored, const fs::path& storeUrl) {
  if (stored.empty()) return std::nullopt;
  if (stored.front() == kInline) return std::string(stored.substr(1));
  if (stored.front() != kFile) return std::string(stored);
  const auto name = externalFileName(stored);
  if (!name) return std::nullopt;
  const auto file = openRegularFile(externalFile(storeUrl, *name).c_str());
  if (!file) return std::nullopt;
  std::string bytes;
  std::array<char, 1 << 16> buffer;
  ssize_t count = 0;
  while ((count = ::read(file.number(), buffer.data(), buffer.size())) > 0) {
    bytes.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return count == 0 ? std::optional(std::move(bytes)) : std::nullopt;
}

}  // namespace vantrel
