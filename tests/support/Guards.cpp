#include "support/Guards.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "base/Iso8601.h"

extern char** environ;

namespace vantrel::test {

namespace fs = std::filesystem;

TemporaryDirectory::TemporaryDirectory() {
  std::string pattern = (fs::temp_directory_path() / "vantrel-test-XXXXXX").string();
  if (!::mkdtemp(pattern.data())) std::abort();
  path_ = pattern;
}

TemporaryDirectory::~TemporaryDirectory() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

namespace {

void setVariable(const std::string& name, const std::optional<std::string>& value) {
  if (value) {
    ::setenv(name.c_str(), value->c_str(), 1);
  } else {
    ::unsetenv(name.c_str());
  }
}

}  // namespace

EnvironmentGuard::EnvironmentGuard(std::string name, const std::optional<std::string>& value)
    : name_(std::move(name)) {
  if (const char* before = std::getenv(name_.c_str())) before_ = before;
  setVariable(name_, value);
}

EnvironmentGuard::~EnvironmentGuard() {
  setVariable(name_, before_);
}

LogCapture::LogCapture() : saved_(::dup(STDERR_FILENO)) {
  const int file = ::open((directory_ / "log").c_str(), O_CREAT | O_WRONLY | O_APPEND, 0600);
  ::dup2(file, STDERR_FILENO);
  ::close(file);
}

LogCapture::~LogCapture() {
  ::dup2(saved_, STDERR_FILENO);
  ::close(saved_);
}

std::string LogCapture::text() {
  return readFile(directory_ / "log");
}

struct FakeClock::Fixed : Clock {
  Date now() const override { return date; }
  Date date;
};

FakeClock::FakeClock(Date now) : clock_(std::make_shared<Fixed>()) {
  clock_->date = now;
  Clock::install(clock_);
}

FakeClock::~FakeClock() {
  Clock::install(nullptr);
}

void FakeClock::set(Date now) {
  clock_->date = now;
}

Date at(const char* text) {
  return dateFromIso8601String(text).value();
}

fs::path testData(const std::string& name) {
  return fs::path(VANTREL_TEST_DATA) / name;
}

std::string readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

void writeFile(const fs::path& path, const std::string& content) {
  std::ofstream(path, std::ios::binary) << content;
}

ProgramResult runProgram(const std::vector<std::string>& arguments,
                         const std::map<std::string, std::string>& environment) {
  const TemporaryDirectory directory;
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  constexpr int kFlags = O_CREAT | O_WRONLY;
  ::posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  ::posix_spawn_file_actions_addopen(&actions, 1, (directory / "out").c_str(), kFlags, 0600);
  ::posix_spawn_file_actions_addopen(&actions, 2, (directory / "err").c_str(), kFlags, 0600);

  std::vector<std::string> variables;
  for (char** variable = environ; *variable; ++variable) {
    const std::string text = *variable;
    if (!environment.contains(text.substr(0, text.find('=')))) variables.push_back(text);
  }
  for (const auto& [name, value] : environment) variables.push_back(name + "=" + value);

  // Programs of this build lie beside the test program.
  const fs::path own = fs::read_symlink("/proc/self/exe").parent_path() / arguments.front();
  const std::string program = fs::exists(own) ? own.string() : arguments.front();
  std::vector<char*> argv;
  for (const auto& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  std::vector<char*> envp;
  for (auto& variable : variables) envp.push_back(variable.data());
  envp.push_back(nullptr);

  ProgramResult result;
  pid_t child = 0;
  const int failed =
      ::posix_spawnp(&child, program.c_str(), &actions, nullptr, argv.data(), envp.data());
  ::posix_spawn_file_actions_destroy(&actions);
  if (failed) return result;
  int status = 0;
  ::waitpid(child, &status, 0);
  result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  result.output = readFile(directory / "out");
  result.errors = readFile(directory / "err");
  return result;
}

std::string python(const fs::path& file, const std::string& expression) {
  const auto result =
      runProgram({"python3", "-c",
                  "import plistlib, sys; p = plistlib.load(open(sys.argv[1], 'rb')); print(" +
                      expression + ", end='')",
                  file});
  return result.output + result.errors;
}

std::string bigEndian(std::uint64_t value, int size) {
  std::string bytes;
  for (int i = size - 1; i >= 0; --i) bytes += static_cast<char>(value >> (8 * i));
  return bytes;
}

}  // namespace vantrel::test
