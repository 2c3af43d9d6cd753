#include "cli/Console.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "cli/Suggestion.h"
#include "common/ExitCode.h"
#include "common/TerminalText.h"

namespace vantrel::cli {

namespace {

constexpr std::size_t kPiece = 1 << 16;

/// Returns 0 or an errno.
int writeAll(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(file, text.data(), text.size());
    if (written < 0 && errno != EINTR) return errno;
    if (written > 0) text.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value && *value;
}

}  // namespace

bool Console::isTerminal() {
  return ::isatty(STDOUT_FILENO) != 0;
}

bool Console::terminalShowsColor() {
  const char* terminal = std::getenv("TERM");
  return ::isatty(STDOUT_FILENO) && !isSet("NO_COLOR") && terminal &&
         std::strcmp(terminal, "dumb") != 0;
}

void Console::print(std::string_view text) {
  output_ += text;
  if (output_.size() >= kPiece) flush();
}

std::string Console::bold(std::string_view text) const {
  return color_ ? "\x1b[1m" + std::string(text) + "\x1b[0m" : std::string(text);
}

std::string Console::dim(std::string_view text) const {
  return color_ ? "\x1b[2m" + std::string(text) + "\x1b[0m" : std::string(text);
}

std::string Console::labelled(std::string_view label, std::string_view value,
                              std::size_t width) const {
  return "  " + dim(paddedToCells(std::string(label), width)) + std::string(value) + "\n";
}

void Console::tell(std::string_view text) {
  flush();
  writeAll(STDERR_FILENO, text);
}

void Console::note(std::string_view text) {
  if (!quiet_ && ::isatty(STDERR_FILENO)) tell("vantrel: " + std::string(text) + "\n");
}

int Console::fail(const Error& error) {
  const auto detail = [&](const char* key) {
    const auto found = error.userInfo.find(key);
    return found == error.userInfo.end() ? std::string() : found->second;
  };
  // The path of the store in errors of the store.
  const std::string path = detail("path");
  std::string line = (path.empty() ? "" : path + ": ") + error.localizedDescription;
  for (std::size_t at = 0; (at = line.find('\n', at)) != std::string::npos; ++at) {
    line.replace(at, 1, "\\n");
  }
  tell("vantrel: " + printable(line) + printableLines(detail(kCandidatesKey), "  ") + "\n");
  return exitCodeForError(error);
}

int Console::finish(int exitCode) {
  flush();
  if (outputError_ == 0 || outputError_ == EPIPE) return exitCode;
  return fail(failure(kExitInputOutput, "standard output", std::strerror(outputError_)));
}

bool Console::flush() {
  if (outputError_ == 0) outputError_ = writeAll(STDOUT_FILENO, output_);
  output_.clear();
  return outputError_ == 0;
}

}  // namespace vantrel::cli
