#pragma once

#include <utility>

namespace vantrel {

/// Owns a file descriptor and closes it. Empty if the call that should have opened it failed.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  /// Takes ownership of `number`; a negative one means none.
  explicit FileDescriptor(int number) : number_(number) {}
  FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept;
  /// Keeps errno.
  ~FileDescriptor();

  explicit operator bool() const { return number_ >= 0; }
  int number() const { return number_; }

 private:
  int number_ = -1;
};

/// Opens a regular file for reading. Never waits for a FIFO or device: empty, with errno EINVAL, if
/// `path` is another kind of file; empty with the system's errno if it cannot be opened.
FileDescriptor openRegularFile(const char* path);

/// Writes the names in a folder to the disk, so that they survive a power cut. Also true if that
/// cannot be asked for: of some file systems, and of a folder that may not be read. False, with
/// errno, if it fails.
bool synchronizeDirectory(const char* path);

}  // namespace vantrel
