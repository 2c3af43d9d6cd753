#include "cli/Progress.h"

#include <unistd.h>

#include <utility>

namespace vantrel::cli {

namespace {

constexpr std::chrono::seconds kPatience(1);
constexpr std::chrono::milliseconds kPace(100);

}  // namespace

Progress::Progress(std::string what, Console& console)
    : what_(std::move(what)),
      console_(console),
      isWanted_(!console.isQuiet() && ::isatty(STDERR_FILENO)),
      next_(std::chrono::steady_clock::now() + kPatience) {}

Progress::~Progress() {
  if (isShown_) console_.tell("\r" + std::string(what_.size() + 6, ' ') + "\r");
}

void Progress::report(std::size_t done, std::size_t all) {
  if (!isWanted_ || all == 0) return;
  const auto now = std::chrono::steady_clock::now();
  if (now < next_) return;
  next_ = now + kPace;
  isShown_ = true;
  const std::string percent = std::to_string(done * 100 / all);
  console_.tell("\r" + what_ + " " + std::string(3 - percent.size(), ' ') + percent + "%");
}

}  // namespace vantrel::cli
