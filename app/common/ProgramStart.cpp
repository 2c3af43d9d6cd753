#include "common/ProgramStart.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <new>

#include "common/ExitCode.h"

namespace vantrel {

namespace {

const char* programName = "";

/// Must not allocate.
[[noreturn]] void exitOutOfMemory() {
  for (const char* text : {programName, ": out of memory\n"}) {
    static_cast<void>(!::write(STDERR_FILENO, text, std::strlen(text)));
  }
  std::_Exit(kExitInternal);
}

}  // namespace

void exitWhenOutOfMemory(const char* program) {
  programName = program;
  std::set_new_handler(&exitOutOfMemory);
}

Expected<void> checkEnvironment() {
  constexpr const char* kVariable = "VANTREL_GROUP_CONTAINER";
  const char* container = std::getenv(kVariable);
  if (!container || !*container || *container == '/') return {};
  return tl::unexpected(failure(
      kExitUsage, kVariable, "expected an absolute path, got \"" + std::string(container) + "\""));
}

}  // namespace vantrel
