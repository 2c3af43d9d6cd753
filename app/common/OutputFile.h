#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include "base/Error.h"
#include "platform/system/ReplacementFile.h"

namespace vantrel {

/// Writes a file atomically: into a temporary file in the same folder, which `finish` renames to
/// `path`. A device or a pipe is written to directly. Not thread-safe.
class OutputFile {
 public:
  /// The text is discarded unless `finish` succeeds.
  explicit OutputFile(std::filesystem::path path) : path_(std::move(path)) {}

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
  bool isReplaced_ = false;  ///< Otherwise a device or pipe, which `output_.file` writes to.
  ReplacementFile output_;
  std::string pending_;
  int error_ = 0;
};

}  // namespace vantrel
