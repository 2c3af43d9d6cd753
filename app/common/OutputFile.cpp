#include "common/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace vantrel {

namespace {

constexpr std::size_t kPiece = 1 << 16;
constexpr mode_t kNewFileMode = 0666;
constexpr mode_t kPermissions = 07777;

}  // namespace

tl::unexpected<Error> OutputFile::failed(int error) const {
  return tl::unexpected(Error{"POSIX", error, path_.string() + ": " + std::strerror(error), {}});
}

Expected<void> OutputFile::open() {
  std::error_code error;
  // The file that the links in `path_` refer to.
  auto target = std::filesystem::weakly_canonical(std::filesystem::absolute(path_, error), error);
  if (error) target = path_;
  struct stat status {};
  const bool exists = ::stat(target.c_str(), &status) == 0;
  if (exists && S_ISDIR(status.st_mode)) return failed(EISDIR);
  isReplaced_ = !exists || S_ISREG(status.st_mode);
  if (!isReplaced_) {
    output_.file = FileDescriptor(::open(target.c_str(), O_WRONLY | O_CLOEXEC));
    if (!output_.file) return failed(errno);
    return {};
  }
  const std::string temporary = target.string() + ".part" + std::to_string(::getpid());
  if (!output_.create(target, temporary, kNewFileMode)) return failed(errno);
  if (exists && ::fchmod(output_.file.number(), status.st_mode & kPermissions) != 0) {
    return failed(errno);
  }
  return {};
}

void OutputFile::write(std::string_view text) {
  pending_ += text;
  if (pending_.size() >= kPiece) flush();
}

void OutputFile::flush() {
  if (error_ == 0 && !output_.write(pending_)) error_ = errno;
  pending_.clear();
}

Expected<void> OutputFile::finish(bool durable) {
  flush();
  if (error_ != 0) return failed(error_);
  if (isReplaced_ && !output_.publish(durable)) return failed(errno);
  return {};
}

}  // namespace vantrel
