#include "cli/Progress.h"

#include <unistd.h>

#include <utility>

namespace vantrel::cli {

namespace {

constexpr std::chrono::seconds kDelay(1);
constexpr std::chrono::milliseconds kInterval(100);

}  // namespace

Progress::Progress(std::string title, Console& console)
    : title_(std::move(title)),
      console_(console),
      isEnabled_(!console.isQuiet() && ::isatty(STDERR_FILENO)),
      nextUpdate_(std::chrono::steady_clock::now() + kDelay) {}

Progress::~Progress() {
  if (isShown_) console_.tell("\r" + std::string(title_.size() + 6, ' ') + "\r");
}

void Progress::report(std::size_t done, std::size_t total) {
  if (!isEnabled_ || total == 0) return;
  const auto now = std::chrono::steady_clock::now();
  if (now < nextUpdate_) return;
  nextUpdate_ = now + kInterval;
  isShown_ = true;
  const std::string percent = std::to_string(done * 100 / total);
  console_.tell("\r" + title_ + " " + std::string(3 - percent.size(), ' ') + percent + "%");
}

}  // namespace vantrel::cli
