#include "cli/exchange/InputText.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "base/FileDescriptor.h"
#include "cli/exchange/ExchangeOptions.h"
#include "cli/exchange/PlanDraft.h"
#include "common/ExitCode.h"

namespace vantrel::cli {

namespace {

constexpr std::size_t kBlock = 1 << 18;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// 0, or an errno; stops behind the largest size that is allowed.
int readAll(int file, std::string& text) {
  for (std::size_t filled = 0;;) {
    text.resize(filled + kBlock);
    const ssize_t count = ::read(file, text.data() + filled, kBlock);
    if (count < 0 && errno == EINTR) continue;
    const int error = errno;
    if (count > 0) filled += static_cast<std::size_t>(count);
    if (count > 0 && filled <= kMostBytesRead) continue;
    text.resize(filled);
    return count < 0 ? error : 0;
  }
}

}  // namespace

Expected<std::string> inputText(const std::string& name) {
  const bool isStandardInput = name == ExchangeOptions::kStandardStream;
  const std::string what = isStandardInput ? "standard input" : name;
  const FileDescriptor opened(isStandardInput ? -1 : ::open(name.c_str(), O_RDONLY | O_CLOEXEC));
  const int file = isStandardInput ? STDIN_FILENO : opened.number();
  std::string text;
  const int error = file < 0 ? errno : readAll(file, text);
  const auto refused = [&](ExitCode code, const std::string& why) {
    return tl::unexpected(failure(code, what, why));
  };
  if (error != 0) return refused(exitCodeForReading(error), std::strerror(error));
  if (text.size() > kMostBytesRead) {
    return refused(kExitBadData, "larger than " + std::to_string(kMostBytesRead >> 20) + " MiB");
  }
  if (text.starts_with(kByteOrderMark)) text.erase(0, kByteOrderMark.size());
  return text;
}

}  // namespace vantrel::cli
