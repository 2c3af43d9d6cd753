#include "common/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace vantrel {

namespace {

constexpr std::size_t kPiece = 1 << 16;
constexpr mode_t kNewFileMode = 0666;
constexpr mode_t kPermissions = 07777;

}  // namespace

OutputFile::OutputFile(std::filesystem::path path) : path_(std::move(path)) {}

OutputFile::~OutputFile() {
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

tl::unexpected<Error> OutputFile::failed(int error) const {
  return tl::unexpected(Error{"POSIX", error, path_.string() + ": " + std::strerror(error), {}});
}

Expected<void> OutputFile::open() {
  std::error_code error;
  target_ = std::filesystem::weakly_canonical(std::filesystem::absolute(path_, error), error);
  if (error) target_ = path_;
  struct stat status {};
  const bool exists = ::stat(target_.c_str(), &status) == 0;
  if (exists && S_ISDIR(status.st_mode)) return failed(EISDIR);
  if (exists && !S_ISREG(status.st_mode)) {
    file_ = FileDescriptor(::open(target_.c_str(), O_WRONLY | O_CLOEXEC));
    if (!file_) return failed(errno);
    return {};
  }
  const std::string temporary = target_.string() + ".part" + std::to_string(::getpid());
  // The kernel removes a file without a name if the program is killed. Not all file systems support
  // it.
  file_ = FileDescriptor(
      ::open(target_.parent_path().c_str(), O_WRONLY | O_TMPFILE | O_CLOEXEC, kNewFileMode));
  isNameless_ = static_cast<bool>(file_);
  if (!isNameless_) {
    file_ = FileDescriptor(::open(
        temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kNewFileMode));
  }
  if (!file_) return failed(errno);
  temporary_ = temporary;
  if (exists && ::fchmod(file_.number(), status.st_mode & kPermissions) != 0) return failed(errno);
  return {};
}

void OutputFile::write(std::string_view text) {
  pending_ += text;
  if (pending_.size() >= kPiece) flush();
}

void OutputFile::flush() {
  std::string_view rest = pending_;
  while (!rest.empty() && error_ == 0) {
    const ssize_t written = ::write(file_.number(), rest.data(), rest.size());
    if (written > 0) rest.remove_prefix(static_cast<std::size_t>(written));
    if (written < 0 && errno != EINTR) error_ = errno;
  }
  pending_.clear();
}

Expected<void> OutputFile::finish(bool durable) {
  flush();
  if (error_ != 0) return failed(error_);
  if (temporary_.empty()) return {};
  if (durable && ::fsync(file_.number()) != 0) return failed(errno);
  const std::string nameless = "/proc/self/fd/" + std::to_string(file_.number());
  if (isNameless_ &&
      ::linkat(AT_FDCWD, nameless.c_str(), AT_FDCWD, temporary_.c_str(), AT_SYMLINK_FOLLOW) != 0) {
    return failed(errno);
  }
  if (::rename(temporary_.c_str(), target_.c_str()) != 0) return failed(errno);
  temporary_.clear();
  if (durable && !synchronizeDirectory(target_.parent_path().c_str())) return failed(errno);
  return {};
}

}  // namespace vantrel
