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

/// Settings under keys, in one binary property list that several processes may have open. Values
/// set here are seen by this object at once, and by all others after synchronize(); what others
/// synchronised is seen by the next read. Any thread.
class UserDefaults {
 public:
  /// The program's own settings: vantrel.plist in paths::configDirectory(). Opened on the first
  /// call and kept.
  static UserDefaults& standardUserDefaults();
  /// Opens `file`; reads it, and creates nothing, before the first need. Without one the object is
  /// an empty store of its own.
  explicit UserDefaults(const std::optional<std::filesystem::path>& file);
  ~UserDefaults();
  UserDefaults(const UserDefaults&) = delete;
  UserDefaults& operator=(const UserDefaults&) = delete;

  /// The value as stored; nothing when the key is missing.
  PropertyList objectForKey(std::string_view key) const;
  /// True for a number other than 0 and for the strings "YES", "true" and "1" in any case.
  bool boolForKey(std::string_view key) const;
  /// Numbers, booleans (1 and 0) and strings that begin with a number; 0 for all others. A fraction
  /// is cut off, and what does not fit becomes the nearest integer that does.
  std::int64_t integerForKey(std::string_view key) const;
  double doubleForKey(std::string_view key) const;
  float floatForKey(std::string_view key) const;
  std::optional<std::string> stringForKey(std::string_view key) const;
  std::optional<Data> dataForKey(std::string_view key) const;
  /// All keys and values.
  PropertyList dictionaryRepresentation() const;

  /// Setting nothing removes the key.
  void setObject(const PropertyList& value, std::string_view key);
  void setBool(bool value, std::string_view key);
  void setInteger(std::int64_t value, std::string_view key);
  void setFloat(float value, std::string_view key);
  void setDouble(double value, std::string_view key);
  void removeObjectForKey(std::string_view key);

  /// Keeps other programs from writing the file until the next `synchronize`, so that a value that
  /// is read here, changed and set does not undo their change. Does nothing while there is no file.
  /// Errors: domain "POSIX"; EAGAIN if another program holds the lock for more than 5 s.
  Expected<void> lock();
  /// Writes what was set here since the last call into the file as it then is, leaving its other
  /// keys alone: it is replaced whole, or stays as it was. A damaged file is moved aside. Errors
  /// are as those of `lock`; what was set then waits for the next call.
  Expected<void> synchronize();
  /// Whether the file can be read (a missing one can). While it cannot, reads answer as if it were
  /// empty. Errors are of domain "POSIX", or "PropertyList" for a damaged file.
  Expected<void> checkReadable() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace vantrel
