#include "platform/system/UserDefaults.h"

#include <fcntl.h>
#include <strings.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cmath>
#include <limits>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>
#include <type_traits>
#include <utility>

#include "base/FileDescriptor.h"
#include "base/Log.h"
#include "platform/system/Paths.h"

namespace vantrel {

namespace fs = std::filesystem;

namespace {

Error posixError(int code, const fs::path& path) {
  return {"POSIX", code, path.string() + ": " + std::generic_category().message(code), {}};
}

Error notRegularFile(const fs::path& path) {
  return {"POSIX", EINVAL, path.string() + ": not a regular file", {}};
}

/// Tells one version of a file from the next.
struct Identity {
  explicit Identity(const struct stat& s)
      : device(s.st_dev),
        inode(s.st_ino),
        size(s.st_size),
        seconds(s.st_mtim.tv_sec),
        nanoseconds(s.st_mtim.tv_nsec) {}
  friend bool operator==(const Identity&, const Identity&) = default;

  dev_t device;
  ino_t inode;
  off_t size;
  time_t seconds;
  long nanoseconds;
};

/// What a file held when it was read or written.
struct Content {
  PropertyList values = PropertyList::dictionary();
  std::optional<Error> error;
  /// Nothing while there is no file.
  std::optional<Identity> identity;
  /// Keeps the file's inode from being given to a later version.
  FileDescriptor file;
};

bool readAll(int file, Data& data) {
  std::size_t done = 0;
  while (done < data.size()) {
    const auto count = ::read(file, data.data() + done, data.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count == 0) errno = EIO;
    if (count <= 0) return false;
    done += static_cast<std::size_t>(count);
  }
  return true;
}

bool writeAll(int file, const Data& data) {
  std::size_t done = 0;
  while (done < data.size()) {
    const auto count = ::write(file, data.data() + done, data.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    done += static_cast<std::size_t>(count);
  }
  return true;
}

Content load(const fs::path& path) {
  Content content;
  // Not blocking, lest a pipe under that name is waited for.
  content.file = FileDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (!content.file || ::fstat(content.file.number(), &status) != 0) {
    if (errno != ENOENT) content.error = posixError(errno, path);
    return content;
  }
  content.identity = Identity(status);
  if (!S_ISREG(status.st_mode)) {
    content.error = S_ISDIR(status.st_mode) ? posixError(EISDIR, path) : notRegularFile(path);
    return content;
  }
  if (static_cast<std::size_t>(status.st_size) > PropertyList::kMaxBytes) {
    content.error = posixError(EFBIG, path);
    return content;
  }
  Data data(static_cast<std::size_t>(status.st_size));
  if (!readAll(content.file.number(), data)) {
    content.error = posixError(errno, path);
    return content;
  }
  auto list = PropertyList::propertyListWithData(data);
  if (list && list->kind() == PropertyList::Kind::kDictionary) {
    content.values = std::move(*list);
  } else {
    content.error = Error{"PropertyList", 1, path.string() + ": The settings are damaged.", {}};
  }
  return content;
}

bool isDamaged(const Content& content) {
  return content.error && content.error->domain == "PropertyList";
}

/// As long as a store waits for other programs.
constexpr std::chrono::seconds kLockTimeout{5};
constexpr std::chrono::milliseconds kLockPause{10};

/// Takes the lock that all writers of a file take: on a file of its own, since the settings
/// themselves are replaced.
Expected<FileDescriptor> lock(const fs::path& path) {
  const fs::path name = path.string() + ".lock";
  FileDescriptor file(::open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600));
  struct stat status {};
  if (!file || ::fstat(file.number(), &status) != 0) return tl::unexpected(posixError(errno, name));
  if (!S_ISREG(status.st_mode)) return tl::unexpected(notRegularFile(name));
  const auto deadline = std::chrono::steady_clock::now() + kLockTimeout;
  while (::flock(file.number(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EINTR && errno != EWOULDBLOCK) return tl::unexpected(posixError(errno, name));
    if (std::chrono::steady_clock::now() >= deadline) {
      return tl::unexpected(Error{
          "POSIX", EAGAIN, path.string() + ": another program holds the settings; try again", {}});
    }
    std::this_thread::sleep_for(kLockPause);
  }
  return file;
}

Expected<void> moveAside(const fs::path& path) {
  fs::path target = path.string() + ".damaged";
  for (int i = 2; fs::exists(fs::symlink_status(target)); ++i) {
    target = path.string() + ".damaged-" + std::to_string(i);
  }
  if (::rename(path.c_str(), target.c_str()) != 0) return tl::unexpected(posixError(errno, path));
  logLine("settings: " + path.string() + " is damaged and was moved to " +
          target.filename().string());
  return {};
}

/// Puts `values` in the file's place, so that a reader, or the next start after a crash, finds the
/// old file or the new one. The lock is held.
Expected<Content> replace(const fs::path& path, PropertyList values) {
  const fs::path beside = path.string() + ".new";
  const Data data = values.binaryData();
  if (data.empty() || data.size() > PropertyList::kMaxBytes) {
    return tl::unexpected(posixError(data.empty() ? ENOMEM : EFBIG, path));
  }
  Content content;
  // What a killed program left, or a FIFO that opening would wait for.
  ::unlink(beside.c_str());
  content.file =
      FileDescriptor(::open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (!content.file) return tl::unexpected(posixError(errno, beside));
  struct stat status {};
  if (!writeAll(content.file.number(), data) || ::fsync(content.file.number()) != 0 ||
      ::fstat(content.file.number(), &status) != 0 || ::rename(beside.c_str(), path.c_str()) != 0) {
    const auto error = posixError(errno, path);
    ::unlink(beside.c_str());
    return tl::unexpected(error);
  }
  const fs::path folder = path.parent_path();
  if (!synchronizeDirectory(folder.c_str())) return tl::unexpected(posixError(errno, folder));
  content.identity = Identity(status);
  content.values = std::move(values);
  return content;
}

/// The number that a text begins with, 0 when it begins with none. Words like "nan" are none.
template <typename Number>
Number leadingNumber(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  if (text.starts_with('+')) text.remove_prefix(1);
  const auto digit = text.find_first_of("0123456789");
  if (digit > text.find_first_not_of("-.")) return 0;
  Number number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if constexpr (std::is_integral_v<Number>) {
    using Limits = std::numeric_limits<Number>;
    if (result.ec == std::errc::result_out_of_range) {
      return text.starts_with('-') ? Limits::min() : Limits::max();
    }
  }
  return number;
}

std::int64_t truncated(double value) {
  using Limits = std::numeric_limits<std::int64_t>;
  if (std::isnan(value)) return 0;
  if (value <= static_cast<double>(Limits::min())) return Limits::min();
  if (value >= static_cast<double>(Limits::max())) return Limits::max();
  return static_cast<std::int64_t>(value);
}

}  // namespace

struct UserDefaults::State {
  /// Reads the file again if it is another than the one known. The lock is held.
  void refresh() {
    if (!path) return;
    struct stat status {};
    const bool exists = ::stat(path->c_str(), &status) == 0;
    if (exists ? content.identity != Identity(status) : content.identity || errno != ENOENT) {
      content = load(*path);
    }
  }

  /// The mutex is held.
  Expected<void> lockFile() {
    if (!path || held) return {};
    if (!paths::createPrivateDirectory(path->parent_path())) {
      return tl::unexpected(posixError(errno ? errno : EIO, path->parent_path()));
    }
    auto locked = vantrel::lock(*path);
    if (!locked) return tl::unexpected(locked.error());
    held = std::move(*locked);
    return {};
  }

  std::optional<fs::path> path;
  std::mutex mutex;
  FileDescriptor held;  ///< Of the locked file, from `lock` to `synchronize`.
  Content content;
  /// What was set since the last synchronisation; nothing stands for a removed key.
  std::map<std::string, PropertyList, std::less<>> changes;
};

UserDefaults& UserDefaults::standardUserDefaults() {
  static UserDefaults standard([]() -> std::optional<fs::path> {
    const auto directory = paths::configDirectory();
    if (!directory) return std::nullopt;
    return *directory / "vantrel.plist";
  }());
  return standard;
}

UserDefaults::UserDefaults(const std::optional<fs::path>& file)
    : state_(std::make_unique<State>()) {
  state_->path = file;
}

UserDefaults::~UserDefaults() = default;

PropertyList UserDefaults::objectForKey(std::string_view key) const {
  const std::lock_guard guard(state_->mutex);
  if (const auto change = state_->changes.find(key); change != state_->changes.end()) {
    return change->second;
  }
  state_->refresh();
  return state_->content.values[key];
}

bool UserDefaults::boolForKey(std::string_view key) const {
  const auto value = objectForKey(key);
  if (const auto text = value.asString()) {
    for (const char* yes : {"yes", "true", "1"}) {
      if (::strcasecmp(text->c_str(), yes) == 0) return true;
    }
    return false;
  }
  return value.asBoolean().value_or(false) || value.asInteger().value_or(0) != 0 ||
         value.asReal().value_or(0) != 0;
}

std::int64_t UserDefaults::integerForKey(std::string_view key) const {
  const auto value = objectForKey(key);
  if (const auto integer = value.asInteger()) return *integer;
  if (const auto real = value.asReal()) return truncated(*real);
  if (const auto text = value.asString()) return leadingNumber<std::int64_t>(*text);
  return value.asBoolean().value_or(false) ? 1 : 0;
}

double UserDefaults::doubleForKey(std::string_view key) const {
  const auto value = objectForKey(key);
  if (const auto real = value.asReal()) return *real;
  if (const auto integer = value.asInteger()) return static_cast<double>(*integer);
  if (const auto text = value.asString()) return leadingNumber<double>(*text);
  return value.asBoolean().value_or(false) ? 1 : 0;
}

float UserDefaults::floatForKey(std::string_view key) const {
  return static_cast<float>(doubleForKey(key));
}

std::optional<std::string> UserDefaults::stringForKey(std::string_view key) const {
  return objectForKey(key).asString();
}

std::optional<Data> UserDefaults::dataForKey(std::string_view key) const {
  return objectForKey(key).asData();
}

PropertyList UserDefaults::dictionaryRepresentation() const {
  const std::lock_guard guard(state_->mutex);
  state_->refresh();
  auto values = state_->content.values;
  for (const auto& [key, value] : state_->changes) values.set(key, value);
  return values;
}

void UserDefaults::setObject(const PropertyList& value, std::string_view key) {
  const std::lock_guard guard(state_->mutex);
  state_->changes.insert_or_assign(std::string(key), value);
}

void UserDefaults::setBool(bool value, std::string_view key) {
  setObject(PropertyList::boolean(value), key);
}

void UserDefaults::setInteger(std::int64_t value, std::string_view key) {
  setObject(PropertyList::integer(value), key);
}

void UserDefaults::setFloat(float value, std::string_view key) {
  setObject(PropertyList::realOfSinglePrecision(value), key);
}

void UserDefaults::setDouble(double value, std::string_view key) {
  setObject(PropertyList::real(value), key);
}

void UserDefaults::removeObjectForKey(std::string_view key) {
  setObject({}, key);
}

Expected<void> UserDefaults::checkReadable() const {
  const std::lock_guard guard(state_->mutex);
  state_->refresh();
  if (state_->content.error) return tl::unexpected(*state_->content.error);
  return {};
}

Expected<void> UserDefaults::lock() {
  const std::lock_guard guard(state_->mutex);
  std::error_code error;
  // A caller that then sets nothing must not leave a new folder behind.
  if (!state_->path || !fs::exists(*state_->path, error)) return {};
  return state_->lockFile();
}

Expected<void> UserDefaults::synchronize() {
  const std::lock_guard guard(state_->mutex);
  auto locked = state_->changes.empty() ? Expected<void>() : state_->lockFile();
  const FileDescriptor held = std::move(state_->held);
  if (!locked || !state_->path || state_->changes.empty()) return locked;
  const fs::path& path = *state_->path;
  auto content = load(path);
  if (isDamaged(content)) {
    if (auto moved = moveAside(path); !moved) return moved;
  } else if (content.error) {
    return tl::unexpected(*content.error);
  }
  for (const auto& [key, value] : state_->changes) content.values.set(key, value);
  auto replaced = replace(path, std::move(content.values));
  if (!replaced) return tl::unexpected(replaced.error());
  state_->content = std::move(*replaced);
  state_->changes.clear();
  return {};
}

}  // namespace vantrel
