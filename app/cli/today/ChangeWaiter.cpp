#include "cli/today/ChangeWaiter.h"

#include <poll.h>
#include <sys/inotify.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <chrono>

#include "base/Clock.h"
#include "platform/text/TimeZone.h"

namespace vantrel::cli {

namespace {

/// A burst of commits makes one look; half a copy of a store, opened, could spoil it.
constexpr int kStoreSettlesMilliseconds = 150;
constexpr int kNewStoreSettlesMilliseconds = 500;

Date systemNow() {
  const std::chrono::duration<double> sinceEpoch =
      std::chrono::system_clock::now().time_since_epoch();
  return Date::dateWithTimeIntervalSince1970(sinceEpoch.count());
}

int watchOnFolderOfZone() {
  const int descriptor = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  inotify_add_watch(descriptor, "/etc", IN_CREATE | IN_MOVED_TO | IN_DELETE | IN_CLOSE_WRITE);
  return descriptor;
}

int takeOverSignals(sigset_t& before) {
  sigset_t ending;
  sigemptyset(&ending);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) sigaddset(&ending, signal);
  sigprocmask(SIG_BLOCK, &ending, &before);
  return signalfd(-1, &ending, SFD_NONBLOCK | SFD_CLOEXEC);
}

void settle(int milliseconds) {
  ::poll(nullptr, 0, milliseconds);
}

}  // namespace

ChangeWaiter::ChangeWaiter(const std::filesystem::path& store)
    : store_(store),
      zoneFolder_(watchOnFolderOfZone()),
      zoneName_(TimeZone::defaultTimeZone().name()),
      signals_(takeOverSignals(signalsBefore_)) {}

ChangeWaiter::~ChangeWaiter() {
  sigprocmask(SIG_SETMASK, &signalsBefore_, nullptr);
  if (signals_ >= 0) close(signals_);
  if (zoneFolder_ >= 0) close(zoneFolder_);
}

bool ChangeWaiter::isZoneAnother() {
  std::array<char, 4096> events{};
  bool any = false;
  while (::read(zoneFolder_, events.data(), events.size()) > 0) any = true;
  return any && TimeZone::defaultTimeZone().name() != zoneName_;
}

ChangeWaiter::Event ChangeWaiter::wait(Date lookAgain) {
  for (;;) {
    // The program's present instant may be another than the system's; time passes alike for both.
    const double remaining = lookAgain.timeIntervalSinceDate(Clock::sharedClock().now());
    timer_.fireAt(systemNow().dateByAddingTimeInterval(remaining));
    std::array<pollfd, 5> files = {{{STDOUT_FILENO, 0, 0},
                                    {signals_, POLLIN, 0},
                                    {store_.fileDescriptor(), POLLIN, 0},
                                    {timer_.fileDescriptor(), POLLIN, 0},
                                    {zoneFolder_, POLLIN, 0}}};
    ::poll(files.data(), files.size(), -1);
    signalfd_siginfo received{};
    while (::read(signals_, &received, sizeof received) > 0) {
      if (received.ssi_signo == SIGPIPE) return Event::kOutputGone;
      signal_ = static_cast<int>(received.ssi_signo);
      return Event::kInterrupted;
    }
    if (files[0].revents & (POLLERR | POLLNVAL)) return Event::kOutputGone;
    if (isZoneAnother()) return Event::kRestart;
    if (files[2].revents != 0) {
      settle(kStoreSettlesMilliseconds);
      const auto change = store_.read();
      if (change == StoreWatcher::Change::kReplaced) settle(kNewStoreSettlesMilliseconds);
      if (change == StoreWatcher::Change::kReplaced) return Event::kRestart;
      if (change == StoreWatcher::Change::kContent) return Event::kStale;
    }
    if (timer_.read() != WallTimer::Event::kNone) return Event::kStale;
  }
}

}  // namespace vantrel::cli
