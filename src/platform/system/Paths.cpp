#include "platform/system/Paths.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <string>

#include "base/FileDescriptor.h"

namespace vantrel::paths {

namespace fs = std::filesystem;

namespace {

std::optional<fs::path> directoryFromEnvironment(const char* variable) {
  const char* value = std::getenv(variable);
  // The XDG base directory specification: relative paths are invalid and must be ignored.
  if (!value || *value != '/') return std::nullopt;
  return fs::path(value);
}

/// The folder in `variable`, otherwise `fallback` in $HOME.
std::optional<fs::path> baseDirectory(const char* variable, std::string_view fallback) {
  if (auto directory = directoryFromEnvironment(variable)) return directory;
  if (auto home = directoryFromEnvironment("HOME")) return *home / fallback;
  return std::nullopt;
}

std::optional<fs::path> ownDirectory(const char* variable, std::string_view fallback) {
  auto directory = baseDirectory(variable, fallback);
  if (directory) *directory /= "vantrel";
  return directory;
}

/// Parses a value of xdg-user-dirs: in double quotes, with backslash escapes, and either absolute
/// or below "$HOME".
std::optional<fs::path> userDirectory(std::string_view value, const fs::path& home) {
  if (value.size() < 2 || value.front() != '"') return std::nullopt;
  std::string text;
  std::size_t i = 1;
  for (; i < value.size() && value[i] != '"'; ++i) {
    if (value[i] == '\\' && i + 1 < value.size()) ++i;
    text += value[i];
  }
  if (i == value.size()) return std::nullopt;
  constexpr std::string_view kHome = "$HOME";
  if (text.starts_with("/")) return fs::path(text);
  if (text == kHome) return home;
  if (text.starts_with("$HOME/")) return home / text.substr(kHome.size() + 1);
  return std::nullopt;
}

}  // namespace

std::optional<fs::path> groupContainer() {
  if (auto container = directoryFromEnvironment("VANTREL_GROUP_CONTAINER")) return container;
  auto directory = ownDirectory("XDG_DATA_HOME", ".local/share");
  if (directory) *directory /= kApplicationGroup;
  return directory;
}

std::optional<fs::path> documentDirectory() {
  const auto home = directoryFromEnvironment("HOME");
  if (!home) return std::nullopt;
  std::optional<fs::path> found;
  constexpr std::string_view kKey = "XDG_DOCUMENTS_DIR=";
  const auto name = *baseDirectory("XDG_CONFIG_HOME", ".config") / "user-dirs.dirs";
  std::ifstream file;
  // Opening a FIFO would wait.
  if (std::error_code error; fs::is_regular_file(name, error)) file.open(name);
  for (std::string line; std::getline(file, line);) {
    const auto start = line.find_first_not_of(" \t");
    if (start == std::string::npos || line.compare(start, kKey.size(), kKey) != 0) continue;
    // The file is a shell script: the last assignment counts.
    found = userDirectory(std::string_view(line).substr(start + kKey.size()), *home);
  }
  return found ? found : *home / "Documents";
}

std::optional<fs::path> configDirectory() {
  return ownDirectory("XDG_CONFIG_HOME", ".config");
}

std::optional<fs::path> cacheDirectory() {
  return ownDirectory("XDG_CACHE_HOME", ".cache");
}

std::optional<fs::path> stateDirectory() {
  return ownDirectory("XDG_STATE_HOME", ".local/state");
}

bool createPrivateDirectory(const fs::path& directory) {
  std::error_code error;
  if (fs::is_directory(directory, error)) return true;
  const fs::path parent = directory.parent_path();
  if (!parent.empty() && parent != directory && !createPrivateDirectory(parent)) return false;
  if (::mkdir(directory.c_str(), 0700) != 0) {
    // Another process may have created it concurrently.
    return errno == EEXIST && fs::is_directory(directory, error);
  }
  // If a power cut loses the folder's name, its files are lost too.
  if (synchronizeDirectory(parent.empty() ? "." : parent.c_str())) return true;
  const int failure = errno;
  ::rmdir(directory.c_str());
  errno = failure;
  return false;
}

}  // namespace vantrel::paths
