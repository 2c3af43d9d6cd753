#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <tuple>

namespace vantrel {

/// Copies a regular file to a new file with mode 0600. False if `from` does not exist. Throws
/// StoreFailure if it is another kind of file, std::filesystem::filesystem_error if copying fails.
bool copyRegularFile(const std::filesystem::path& from, const std::filesystem::path& to);

/// Copies a support folder that other processes may change concurrently. Throws what
/// `copyRegularFile` throws.
class PictureCopy {
 public:
  /// `from` may be missing.
  PictureCopy(std::filesystem::path from, std::filesystem::path to);

  /// Copies the files that are new or changed since the last call. Skips files that vanish and
  /// broken links. Throws for links to folders and for special files.
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
