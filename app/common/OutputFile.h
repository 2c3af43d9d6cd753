#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "base/Error.h"
#include "base/FileDescriptor.h"

namespace vantrel {

/// A file that is there whole or not at all: written beside its place, then put there. A device or
/// a pipe of that name is written to as it is.
class OutputFile {
 public:
  /// Nothing is made before `open`.
  explicit OutputFile(std::filesystem::path path);
  /// Removes what was not finished.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  Expected<void> open();
  /// The first failure ends the writing; `finish` tells it.
  void write(std::string_view text);
  /// Puts the file in its place, and makes it lasting before; who can make it again need not wait
  /// for the disk.
  Expected<void> finish(bool lasting = true);

 private:
  tl::unexpected<Error> failed(int error) const;
  void flush();

  std::filesystem::path path_;
  std::filesystem::path target_;  ///< `path_` with its links followed.
  std::filesystem::path beside_;  ///< Empty when `path_` itself is written to.
  bool isNameless_ = false;       ///< Then `beside_` is there only at the end.
  std::string pending_;
  FileDescriptor file_;
  int error_ = 0;
};

}  // namespace vantrel
