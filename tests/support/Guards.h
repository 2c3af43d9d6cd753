#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Clock.h"
#include "base/Date.h"

namespace vantrel::test {

/// A folder of its own, removed with all that is in it.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

/// Sets an environment variable (or, with nothing, removes it) for its own life.
class EnvironmentGuard {
 public:
  EnvironmentGuard(std::string name, const std::optional<std::string>& value);
  ~EnvironmentGuard();
  EnvironmentGuard(const EnvironmentGuard&) = delete;
  EnvironmentGuard& operator=(const EnvironmentGuard&) = delete;

 private:
  std::string name_;
  std::optional<std::string> before_;
};

/// Catches what is written to standard error during its life.
class LogCapture {
 public:
  LogCapture();
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;
  std::string text();

 private:
  int saved_ = -1;
  TemporaryDirectory directory_;
};

/// A clock that stands where it is set, installed for its own life.
class FakeClock {
 public:
  explicit FakeClock(Date now);
  ~FakeClock();
  FakeClock(const FakeClock&) = delete;
  FakeClock& operator=(const FakeClock&) = delete;
  void set(Date now);

 private:
  struct Fixed;
  std::shared_ptr<Fixed> clock_;
};

/// A file under tests/data.
std::filesystem::path testData(const std::string& name);
/// The whole content of a file.
std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& content);

/// What a program did.
struct ProgramResult {
  int exitCode = -1;  ///< 128 + the signal's number when it was killed.
  std::string output;
  std::string errors;
};
/// Runs a program of this build (or any found on the PATH) to its end, without a shell.
ProgramResult runProgram(const std::vector<std::string>& arguments,
                         const std::map<std::string, std::string>& environment = {});

}  // namespace vantrel::test
