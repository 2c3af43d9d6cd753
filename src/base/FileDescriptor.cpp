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
  // A socket cannot even be opened.
  if (file || errno == ENXIO || errno == ENODEV) errno = EINVAL;
  return {};
}

bool synchronizeDirectory(const char* path) {
  const FileDescriptor directory(::open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!directory) return errno == EACCES;
  return ::fsync(directory.number()) == 0 || errno == EINVAL;
}

}  // namespace vantrel
