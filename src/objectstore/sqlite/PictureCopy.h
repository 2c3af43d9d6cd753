#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <tuple>

namespace vantrel {

/// Copies all bytes of a regular file into a new file that is readable for the user alone. False if
/// `from` does not exist; throws StoreFailure if it is another kind of file, and
/// std::filesystem::filesystem_error.
bool copyRegularFile(const std::filesystem::path& from, const std::filesystem::path& to);

/// The copy of a support folder, which other programs may change at the same time. Throws what
/// `copyRegularFile` throws.
class PictureCopy {
 public:
  /// `from` need not exist.
  PictureCopy(std::filesystem::path from, std::filesystem::path to);

  /// Copies the files that are new or changed since the last call. Skips files that vanish, and
  /// links that lead nowhere. Fails at links to folders and at special files.
  void update();
  /// Removes the files that `from` no longer has, except `kept`.
  void removeVanished(const std::set<std::string>& kept);

 private:
  /// Inode, size, and seconds and nanoseconds of the last change.
  using Version = std::tuple<ino_t, off_t, time_t, long>;
  void updateFolder(const std::filesystem::path& folder);
  void updateFile(const std::filesystem::path& file);

  std::filesystem::path from_;
  std::filesystem::path to_;
  std::map<std::filesystem::path, Version> versions_;  ///< By path below `from_`.
};

}  // namespace vantrel
