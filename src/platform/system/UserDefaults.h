#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Error.h"
#include "platform/archive/PropertyList.h"

namespace vantrel {

/// Settings by key in a binary property list, which several processes may use concurrently. This
/// object reads the values it has set at once; other objects read them after `synchronize`.
/// Thread-safe.
class UserDefaults {
 public:
  /// The settings of the programs: vantrel.plist in `paths::configDirectory`.
  static UserDefaults& standardUserDefaults();
  /// Reads `file` on first use. Without a file, the settings are kept in memory only.
  explicit UserDefaults(const std::optional<std::filesystem::path>& file);
  ~UserDefaults();
  UserDefaults(UserDefaults&&) = delete;

  /// Null if the key is missing.
  PropertyList objectForKey(std::string_view key) const;
  /// True for true, for numbers other than 0, and for "YES", "true" and "1" in any case.
  bool boolForKey(std::string_view key) const;
  /// Converts numbers, booleans (1 and 0) and strings that begin with a number; 0 for other values.
  /// Integers truncate fractions, and are clamped to their range.
  std::int64_t integerForKey(std::string_view key) const;
  double doubleForKey(std::string_view key) const;
  float floatForKey(std::string_view key) const { return static_cast<float>(doubleForKey(key)); }
  std::optional<std::string> stringForKey(std::string_view key) const {
    return objectForKey(key).asString();
  }
  std::optional<Data> dataForKey(std::string_view key) const { return objectForKey(key).asData(); }
  PropertyList dictionaryRepresentation() const;

  /// Null removes the key.
  void setObject(const PropertyList& value, std::string_view key);
  void setBool(bool value, std::string_view key) { setObject(PropertyList::boolean(value), key); }
  void setInteger(std::int64_t value, std::string_view key) {
    setObject(PropertyList::integer(value), key);
  }
  void setFloat(float value, std::string_view key) {
    setObject(PropertyList::realOfSinglePrecision(value), key);
  }
  void setDouble(double value, std::string_view key) { setObject(PropertyList::real(value), key); }
  void removeObjectForKey(std::string_view key) { setObject({}, key); }

  /// Locks the file against other writers until the next `synchronize`, so that reading a value,
  /// changing and setting it does not undo their changes. Does nothing if the file does not exist.
  /// Errors: domain "POSIX", with EAGAIN if another process holds the lock for more than 5 s.
  Expected<void> lock();
  /// Writes the values set since the last call to the file and keeps the file's other keys.
  /// Replaces the file atomically; renames a damaged file and starts a new one. Errors: as `lock`;
  /// the next call then writes the values.
  Expected<void> synchronize();
  /// Fails if the file exists and cannot be read; it then reads as empty. Errors: domain "POSIX",
  /// or "PropertyList" if it is damaged.
  Expected<void> checkReadable() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace vantrel
