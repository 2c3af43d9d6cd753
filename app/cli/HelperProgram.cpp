#include "cli/HelperProgram.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "cli/ExitCode.h"
#include "platform/Bundle.h"

namespace vantrel::cli {

Error continueAs(const std::string& program, const std::vector<std::string>& arguments) {
  std::error_code error;
  const auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
  ::setenv("VANTREL_BUNDLE", Bundle::mainBundle().root().c_str(), 1);
  std::vector<std::string> words = {program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (auto& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  for (const char* place : {"", VANTREL_LIBEXEC_FROM_BIN}) {
    ::execv((folder / place / program).c_str(), pointers.data());
    if (errno != ENOENT) break;
  }
  return failure(kExitUnavailable, program,
                 std::string(std::strerror(errno)) + "; is vantrel installed whole?");
}

}  // namespace vantrel::cli
