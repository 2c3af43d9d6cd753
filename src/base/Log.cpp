#include "base/Log.h"

#include <atomic>
#include <cstdio>
#include <string>

namespace vantrel {

namespace {

std::atomic<bool> logsEnabled = true;

}  // namespace

void setLogsEnabled(bool enabled) {
  logsEnabled = enabled;
}

void logLine(std::string_view text) {
  if (!logsEnabled) return;
  std::string line(text);
  for (auto& c : line) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = '?';
  }
  line += '\n';
  // One call: lines of several threads must not mix.
  std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace vantrel
