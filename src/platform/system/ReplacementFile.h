#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string_view>

#include "base/FileDescriptor.h"

namespace vantrel {

/// Replaces a file atomically: readers, and the next start after a crash, find the old content or
/// the new one. The content is written to a temporary file in the same folder, which `publish`
/// renames. Functions return false, with errno, if they fail. Not thread-safe.
class ReplacementFile {
 public:
  ReplacementFile() = default;
  ReplacementFile(ReplacementFile&&) = delete;
  /// Removes the temporary file unless it was published.
  ~ReplacementFile();

  /// Creates a file without a name, so that nothing is left behind if the process is killed, or, on
  /// file systems that do not support it, one named `temporary`, which must not exist.
  bool create(const std::filesystem::path& target, const std::filesystem::path& temporary,
              mode_t mode);
  bool write(std::string_view bytes) { return writeAll(file, bytes); }
  /// Renames the file to `target`. If `isDurable`, synchronises the file before and the folder
  /// after.
  bool publish(bool isDurable = true);

  FileDescriptor file;

 private:
  std::filesystem::path target_;
  std::filesystem::path temporary_;  ///< Empty before `create` and after `publish`.
  bool isNameless_ = false;
};

}  // namespace vantrel
