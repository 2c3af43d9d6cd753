#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <vector>

#include "Scratch.h"
#include "Targets.h"
#include "base/Log.h"
#include "base/PercentEncoding.h"
#include "cli/Program.h"
#include "common/LinkedPlan.h"

namespace vantrel::fuzz {

namespace {

/// Words of commands that start other programs, use the network, access other files or never exit.
constexpr std::array kLeftOut = {"open", "lookup", "watch", "import", "export", "auto", "-"};

void useScratchFolder() {
  static const Scratch scratch;
  ::setenv("HOME", scratch.folder().c_str(), 1);
  ::setenv("VANTREL_GROUP_CONTAINER", (scratch.folder() / "group").c_str(), 1);
  const int nowhere = ::open("/dev/null", O_RDWR);
  ::dup2(nowhere, STDIN_FILENO);
  ::dup2(nowhere, STDOUT_FILENO);
  ::close(nowhere);
}

}  // namespace

void link(Bytes input) {
  const auto uri = uriFromLink(std::string(textOf(input)));
  if (!uri) return;
  const auto again = uriFromLink("vantrel://plan?id=" + *uri);
  require(!again || *again == *uri, "a link identifies one plan");
  require(uri->starts_with("x-coredata://") && uri->find("..") == std::string::npos,
          "a link identifies a plan, not a file");
}

/// The input is the words of a command line, separated by line feeds.
void commandLine(Bytes input) {
  static const bool once = (useScratchFolder(), setLogsEnabled(false), true);
  require(once, "the scratch folder is used");
  std::vector<std::string> words;
  std::string text(textOf(input));
  for (std::size_t start = 0; start <= text.size();) {
    const auto end = std::min(text.find('\n', start), text.size());
    words.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  const bool isLeftOut = std::any_of(words.begin(), words.end(), [](const auto& word) {
    return std::find(kLeftOut.begin(), kLeftOut.end(), word) != kLeftOut.end();
  });
  const bool hasNul = text.find('\0') != std::string::npos;
  if (isLeftOut || hasNul || words.size() > 32) return;
  const int code = cli::runProgram(words);
  require(code >= 0 && code <= 130 && code != 70, "no command has an internal error");
}

}  // namespace vantrel::fuzz
