#include "platform/system/ReplacementFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <string>

namespace vantrel {

ReplacementFile::~ReplacementFile() {
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

bool ReplacementFile::create(const std::filesystem::path& target,
                             const std::filesystem::path& temporary, mode_t mode) {
  constexpr int kFlags = O_WRONLY | O_CLOEXEC;
  // `publish` needs /proc to give the file a name.
  if (::access("/proc/self/fd", F_OK) == 0) {
    file = FileDescriptor(::open(target.parent_path().c_str(), kFlags | O_TMPFILE, mode));
  }
  isNameless_ = static_cast<bool>(file);
  if (!isNameless_) {
    file = FileDescriptor(::open(temporary.c_str(), kFlags | O_CREAT | O_EXCL | O_NOFOLLOW, mode));
  }
  if (!file) return false;
  target_ = target;
  temporary_ = temporary;
  return true;
}

bool ReplacementFile::publish(bool isDurable) {
  if (isDurable && ::fsync(file.number()) != 0) return false;
  const std::string nameless = "/proc/self/fd/" + std::to_string(file.number());
  if (isNameless_ &&
      ::linkat(AT_FDCWD, nameless.c_str(), AT_FDCWD, temporary_.c_str(), AT_SYMLINK_FOLLOW) != 0) {
    return false;
  }
  if (std::rename(temporary_.c_str(), target_.c_str()) != 0) return false;
  temporary_.clear();
  return !isDurable || synchronizeDirectory(target_.parent_path().c_str());
}

}  // namespace vantrel
