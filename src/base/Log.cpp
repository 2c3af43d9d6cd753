#include "base/Log.h"

#include <atomic>
#include <cstdio>

namespace vantrel {

namespace {

std::atomic<bool> logsEnabled = true;

}  // namespace

std::string stringWithFormat(std::string_view format,
                             std::initializer_list<std::string_view> arguments) {
  constexpr std::string_view kPlaceholder = "%@";
  std::string result;
  for (const auto argument : arguments) {
    const auto at = format.find(kPlaceholder);
    if (at == std::string_view::npos) break;
    result.append(format.substr(0, at)).append(argument);
    format.remove_prefix(at + kPlaceholder.size());
  }
  return result.append(format);
}

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
  // One call, so that lines of several threads do not mix.
  std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace vantrel
