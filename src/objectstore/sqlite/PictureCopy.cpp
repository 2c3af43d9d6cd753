#include "objectstore/sqlite/PictureCopy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include "base/FileDescriptor.h"
#include "objectstore/sqlite/StoreError.h"

namespace vantrel {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void failSystem(const char* what, const fs::path& path, int error) {
  throw fs::filesystem_error(what, path, std::error_code(error, std::generic_category()));
}

[[noreturn]] void failSpecial(const fs::path& path) {
  failStore(StoreErrorCode::kNotAStore, path.filename().string() + " is not a regular file");
}

/// Empty if the file does not exist.
FileDescriptor openSource(const fs::path& path) {
  FileDescriptor file = openRegularFile(path.c_str());
  if (file || errno == ENOENT) return file;
  if (errno == EINVAL) failSpecial(path);
  failSystem("cannot open", path, errno);
}

void writeAll(const FileDescriptor& file, const char* bytes, std::size_t size, const fs::path& to) {
  while (size > 0) {
    const ssize_t count = ::write(file.number(), bytes, size);
    if (count < 0) failSystem("cannot write", to, errno);
    bytes += count;
    size -= static_cast<std::size_t>(count);
  }
}

void copyBytes(const FileDescriptor& source, const fs::path& from, const fs::path& to) {
  const FileDescriptor target(
      ::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
  if (!target) failSystem("cannot create", to, errno);
  std::array<char, 1 << 16> buffer;
  ssize_t count = 0;
  while ((count = ::read(source.number(), buffer.data(), buffer.size())) > 0) {
    writeAll(target, buffer.data(), static_cast<std::size_t>(count), to);
  }
  if (count < 0) failSystem("cannot read", from, errno);
}

}  // namespace

bool copyRegularFile(const fs::path& from, const fs::path& to) {
  const FileDescriptor source = openSource(from);
  if (source) copyBytes(source, from, to);
  return static_cast<bool>(source);
}

PictureCopy::PictureCopy(fs::path from, fs::path to) : from_(std::move(from)), to_(std::move(to)) {}

void PictureCopy::update() {
  updateFolder({});
}

void PictureCopy::updateFolder(const fs::path& folder) {
  std::error_code error;
  fs::directory_iterator entries(from_ / folder, error);
  if (error == std::errc::no_such_file_or_directory) return;
  if (error == std::errc::not_a_directory) failSpecial(from_ / folder);
  if (error) throw fs::filesystem_error("cannot read", from_ / folder, error);
  // Private and writable, whatever the mode of the old folder.
  if (::mkdir((to_ / folder).c_str(), S_IRWXU) != 0 && errno != EEXIST) {
    failSystem("cannot create", to_ / folder, errno);
  }
  for (; entries != fs::directory_iterator(); entries.increment(error)) {
    const fs::path path = folder / entries->path().filename();
    if (entries->symlink_status(error).type() == fs::file_type::directory) {
      updateFolder(path);
    } else {
      updateFile(path);
    }
  }
  if (error) throw fs::filesystem_error("cannot read", from_ / folder, error);
}

void PictureCopy::updateFile(const fs::path& file) {
  const FileDescriptor source = openSource(from_ / file);
  if (!source) return;
  struct stat status = {};
  if (::fstat(source.number(), &status) != 0) failSystem("cannot read", from_ / file, errno);
  const Version version(status.st_ino, status.st_size, status.st_mtim.tv_sec,
                        status.st_mtim.tv_nsec);
  const auto known = versions_.find(file);
  if (known != versions_.end() && known->second == version) return;
  fs::remove(to_ / file);
  copyBytes(source, from_ / file, to_ / file);
  versions_[file] = version;
}

void PictureCopy::removeVanished(const std::set<std::string>& kept) {
  for (const auto& [file, version] : versions_) {
    std::error_code error;
    if (kept.count(file.filename()) == 0 && !fs::exists(from_ / file, error)) {
      fs::remove(to_ / file, error);
    }
  }
}

}  // namespace vantrel
