#include "base/Log.h"
#include "cli/Program.h"

int main(int argc, char** argv) {
  // What goes wrong is told once, by the command.
  vantrel::setLogsEnabled(false);
  return vantrel::cli::runProgram(std::vector<std::string>(argv + 1, argv + argc));
}
