#include "cli/lookup/ChildProgram.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "base/FileDescriptor.h"
#include "common/ExitCode.h"

namespace vantrel::cli {

namespace {

std::string readToEnd(int file) {
  std::string text;
  std::array<char, 4096> bytes{};
  for (;;) {
    const ssize_t count = ::read(file, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return text;
    text.append(bytes.data(), static_cast<std::size_t>(count));
  }
}

int exitCodeOf(pid_t child) {
  constexpr int kSignalled = 128;
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : kSignalled + WTERMSIG(status);
}

}  // namespace

Expected<ChildResult> outputOfProgram(const std::filesystem::path& program,
                                      const std::vector<std::string>& arguments) {
  const auto cannotStart = [&](int code) {
    return tl::unexpected(failure(kExitUnavailable, program.string(), std::strerror(code)));
  };
  std::array<int, 2> pipe{};
  if (::pipe2(pipe.data(), O_CLOEXEC) != 0) return cannotStart(errno);
  const FileDescriptor readEnd(pipe[0]);
  FileDescriptor writeEnd(pipe[1]);

  std::vector<std::string> words = {program.filename().string()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  argv.reserve(words.size() + 1);
  for (auto& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, writeEnd.number(), STDOUT_FILENO);
  pid_t child = 0;
  const int failed =
      ::posix_spawn(&child, program.c_str(), &actions, nullptr, argv.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  // The child's end alone is left: reading ends with the child.
  writeEnd = FileDescriptor();
  ChildResult result;
  if (failed == 0) {
    result.output = readToEnd(readEnd.number());
    result.exitCode = exitCodeOf(child);
  }
  if (failed != 0) return cannotStart(failed);
  return result;
}

}  // namespace vantrel::cli
