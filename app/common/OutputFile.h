#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "base/Error.h"
#include "base/FileDescriptor.h"

namespace vantrel {

/// Writes a file atomically: into a temporary file in the same folder, which `finish` renames to
/// `path`. A device or a pipe is written to directly. Not thread-safe.
class OutputFile {
 public:
  explicit OutputFile(std::filesystem::path path);
  /// Discards the text unless `finish` succeeded.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// Creates the temporary file. Errors have the domain "POSIX", here and in `finish`.
  Expected<void> open();
  /// Buffered; `finish` reports the first error.
  void write(std::string_view text);
  /// Renames the file to `path`, after an fsync unless `durable` is false, as for output that is
  /// easily created again.
  Expected<void> finish(bool durable = true);

 private:
  tl::unexpected<Error> failed(int error) const;
  void flush();

  std::filesystem::path path_;
  std::filesystem::path target_;     ///< `path_` with its links resolved.
  std::filesystem::path temporary_;  ///< Empty while `path_` itself is written to.
  bool isNameless_ = false;          ///< Whether only `finish` creates `temporary_`.
  std::string pending_;
  FileDescriptor file_;
  int error_ = 0;
};

}  // namespace vantrel
