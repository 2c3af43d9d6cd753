#include "base/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace vantrel {

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
  FileDescriptor old(std::exchange(number_, std::exchange(other.number_, -1)));
  return *this;
}

FileDescriptor::~FileDescriptor() {
  if (number_ < 0) return;
  const int error = errno;
  ::close(number_);
  errno = error;
}

FileDescriptor openRegularFile(const char* path) {
  FileDescriptor file(::open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  struct stat status = {};
  if (file && ::fstat(file.number(), &status) == 0 && S_ISREG(status.st_mode)) return file;
  // Sockets fail to open.
  if (file || errno == ENXIO || errno == ENODEV) errno = EINVAL;
  return {};
}

std::optional<std::vector<std::byte>> readAll(const FileDescriptor& file, std::size_t limit) {
  struct stat status = {};
  if (::fstat(file.number(), &status) != 0) return std::nullopt;
  const auto size = static_cast<std::size_t>(status.st_size);
  if (size > limit) {
    errno = EFBIG;
    return std::nullopt;
  }
  std::vector<std::byte> bytes(size);
  for (std::size_t done = 0; done < size;) {
    const ssize_t count = ::read(file.number(), bytes.data() + done, size - done);
    if (count < 0 && errno == EINTR) continue;
    if (count == 0) errno = EIO;
    if (count <= 0) return std::nullopt;
    done += static_cast<std::size_t>(count);
  }
  return bytes;
}

bool writeAll(const FileDescriptor& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(file.number(), bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

bool synchronizeDirectory(const char* path) {
  const FileDescriptor directory(::open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!directory) return errno == EACCES;
  return ::fsync(directory.number()) == 0 || errno == EINVAL;
}

}  // namespace vantrel
