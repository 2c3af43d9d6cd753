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
#include <tuple>
#include <type_traits>
#include <utility>

#include "base/FileDescriptor.h"
#include "base/Log.h"
#include "platform/system/Paths.h"
#include "platform/system/ReplacementFile.h"

namespace vantrel {

namespace fs = std::filesystem;

namespace {

Error posixError(int code, const fs::path& path) {
  return {"POSIX", code, path.string() + ": " + std::generic_category().message(code), {}};
}

Error notRegularFile(const fs::path& path) {
  return {"POSIX", EINVAL, path.string() + ": not a regular file", {}};
}

/// Differs between versions of a file.
using Identity = std::tuple<dev_t, ino_t, off_t, time_t, long>;

Identity identityOf(const struct stat& s) {
  return {s.st_dev, s.st_ino, s.st_size, s.st_mtim.tv_sec, s.st_mtim.tv_nsec};
}

/// The file as last read or written.
struct Content {
  PropertyList values = PropertyList::dictionary();
  std::optional<Error> error;
  std::optional<Identity> identity;  ///< `nullopt` if the file does not exist.
  FileDescriptor file;  ///< Open, so that no later version can have the same inode number.
};

Content load(const fs::path& path) {
  Content content;
  // O_NONBLOCK: opening a FIFO would wait.
  content.file = FileDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (!content.file || ::fstat(content.file.number(), &status) != 0) {
    if (errno != ENOENT) content.error = posixError(errno, path);
    return content;
  }
  content.identity = identityOf(status);
  if (!S_ISREG(status.st_mode)) {
    content.error = S_ISDIR(status.st_mode) ? posixError(EISDIR, path) : notRegularFile(path);
    return content;
  }
  const auto data = readAll(content.file, PropertyList::kMaxBytes);
  if (!data) {
    content.error = posixError(errno, path);
    return content;
  }
  auto list = PropertyList::propertyListWithData(*data);
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

/// The same time as stores wait for other processes.
constexpr std::chrono::seconds kLockTimeout{5};
constexpr std::chrono::milliseconds kLockPause{10};

/// Locks the settings for writing. The lock is on a separate file, as the settings are replaced.
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

/// Replaces the file atomically, also if the process or the system stops. The lock must be held.
Expected<Content> replace(const fs::path& path, PropertyList values) {
  const Data data = values.binaryData();
  if (data.size() > PropertyList::kMaxBytes) return tl::unexpected(posixError(EFBIG, path));
  const fs::path temporary = path.string() + ".new";
  // Left behind by a killed process, or not a regular file.
  ::unlink(temporary.c_str());
  ReplacementFile next;
  if (!next.create(path, temporary, 0600)) return tl::unexpected(posixError(errno, temporary));
  struct stat status {};
  if (!next.write({reinterpret_cast<const char*>(data.data()), data.size()}) ||
      ::fstat(next.file.number(), &status) != 0 || !next.publish()) {
    return tl::unexpected(posixError(errno, path));
  }
  Content content;
  content.file = std::move(next.file);
  content.identity = identityOf(status);
  content.values = std::move(values);
  return content;
}

/// The number at the start of `text`; 0 if there is none. "nan" and "inf" are not numbers.
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
  /// Reads the file again if it has changed. The mutex must be held.
  void refresh() {
    if (!path) return;
    struct stat status {};
    const bool exists = ::stat(path->c_str(), &status) == 0;
    if (exists ? content.identity != identityOf(status) : content.identity || errno != ENOENT) {
      content = load(*path);
    }
  }

  /// The mutex must be held.
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
  FileDescriptor held;  ///< The lock, from `lock` to `synchronize`.
  Content content;
  /// The values set since the last `synchronize`; null for removed keys.
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

Expected<void> UserDefaults::checkReadable() const {
  const std::lock_guard guard(state_->mutex);
  state_->refresh();
  if (state_->content.error) return tl::unexpected(*state_->content.error);
  return {};
}

Expected<void> UserDefaults::lock() {
  const std::lock_guard guard(state_->mutex);
  std::error_code error;
  // Locking creates the folder, which a caller that sets no value must not do.
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
