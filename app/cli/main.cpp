#include "base/Log.h"
#include "cli/Program.h"
#include "common/ProgramStart.h"

int main(int argc, char** argv) {
  vantrel::exitWhenOutOfMemory("vantrel");
  // The command reports errors itself.
  vantrel::setLogsEnabled(false);
  return vantrel::cli::runProgram(std::vector<std::string>(argv + 1, argv + argc));
}
