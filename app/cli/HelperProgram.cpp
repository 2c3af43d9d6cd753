#include "cli/HelperProgram.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "cli/ExitCode.h"
#include "platform/Bundle.h"

namespace vantrel::cli {

Expected<std::filesystem::path> helperProgram(const std::string& name) {
  std::error_code error;
  const auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
  for (const char* place : {".", VANTREL_LIBEXEC_FROM_BIN}) {
    const auto program = (folder / place / name).lexically_normal();
    if (!folder.empty() && std::filesystem::is_regular_file(program, error)) return program;
  }
  return tl::make_unexpected(
      failure(kExitUnavailable, name, "not installed beside this program; is vantrel whole?"));
}

Error continueAs(const std::string& name, const std::vector<std::string>& arguments) {
  const auto program = helperProgram(name);
  if (!program) return program.error();
  ::setenv("VANTREL_BUNDLE", Bundle::mainBundle().root().c_str(), 1);
  std::vector<std::string> words = {name};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (auto& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  ::execv(program->c_str(), pointers.data());
  return failure(kExitUnavailable, program->string(), std::strerror(errno));
}

}  // namespace vantrel::cli
