#include "objectstore/sqlite/ExternalData.h"

#include <fstream>
#include <iterator>

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
  std::ifstream file(externalFile(storeUrl, *name), std::ios::binary);
  if (!file) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(file), {});
}

}  // namespace vantrel
