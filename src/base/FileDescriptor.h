#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace vantrel {

/// Owns a file descriptor and closes it. Empty if opening failed.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  /// Takes ownership of `number`; a negative number is empty.
  explicit FileDescriptor(int number) : number_(number) {}
  FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept;
  /// Preserves errno.
  ~FileDescriptor();

  explicit operator bool() const { return number_ >= 0; }
  int number() const { return number_; }

 private:
  int number_ = -1;
};

/// Opens a regular file for reading without ever waiting. Empty, with errno, if that fails; errno
/// is EINVAL if `path` is not a regular file.
FileDescriptor openRegularFile(const char* path);

/// Reads a regular file. `nullopt`, with errno, if that fails; EFBIG if it is larger than `limit`.
std::optional<std::vector<std::byte>> readAll(const FileDescriptor& file, std::size_t limit);

/// Writes all of `bytes`. Returns false, with errno, if that fails.
bool writeAll(const FileDescriptor& file, std::string_view bytes);

/// Synchronises a folder, so that the names in it survive a power cut. Returns false, with errno,
/// if that fails; true if the folder cannot be read or its file system cannot synchronise folders.
bool synchronizeDirectory(const char* path);

}  // namespace vantrel
