#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Clock.h"
#include "base/Date.h"

namespace vantrel::test {

/// Creates a folder, and removes it with its contents.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(TemporaryDirectory&&) = delete;
  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

/// Sets an environment variable, or removes it if `value` is `nullopt`, until its destruction.
class EnvironmentGuard {
 public:
  EnvironmentGuard(std::string name, const std::optional<std::string>& value);
  ~EnvironmentGuard();
  EnvironmentGuard(EnvironmentGuard&&) = delete;

 private:
  std::string name_;
  std::optional<std::string> before_;
};

/// Captures standard error until its destruction.
class LogCapture {
 public:
  LogCapture();
  ~LogCapture();
  LogCapture(LogCapture&&) = delete;
  std::string text();

 private:
  int saved_ = -1;
  TemporaryDirectory directory_;
};

/// Installs a clock that only `set` changes, until its destruction.
class FakeClock {
 public:
  explicit FakeClock(Date now);
  ~FakeClock();
  FakeClock(FakeClock&&) = delete;
  void set(Date now);

 private:
  struct Fixed;
  std::shared_ptr<Fixed> clock_;
};

/// The instant of an ISO 8601 text, which must be valid.
Date at(const char* text);

/// A file under tests/data.
std::filesystem::path testData(const std::string& name);
std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& content);

struct ProgramResult {
  int exitCode = -1;  ///< 128 + the number of the signal that killed it.
  std::string output;
  std::string errors;
};
/// Runs a program of this build, otherwise of the PATH, without a shell, and waits for its end.
ProgramResult runProgram(const std::vector<std::string>& arguments,
                         const std::map<std::string, std::string>& environment = {});

/// What Python, an independent reader, prints for `expression` about a property list file `p`.
std::string python(const std::filesystem::path& file, const std::string& expression);
/// The lowest `size` bytes of `value`.
std::string bigEndian(std::uint64_t value, int size);

}  // namespace vantrel::test
