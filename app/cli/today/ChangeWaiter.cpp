#include "cli/today/ChangeWaiter.h"

#include <poll.h>
#include <sys/inotify.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "common/Staleness.h"
#include "platform/text/TimeZone.h"

namespace vantrel::cli {

namespace {

/// Added to the signal number for the exit code, as shells do.
constexpr int kSignalled = 128;

int watchOnFolderOfZone() {
  const int descriptor = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  inotify_add_watch(descriptor, "/etc", IN_CREATE | IN_MOVED_TO | IN_DELETE | IN_CLOSE_WRITE);
  return descriptor;
}

}  // namespace

ChangeWaiter::ChangeWaiter(const std::filesystem::path& store)
    : store_(store),
      zoneFolder_(watchOnFolderOfZone()),
      zoneName_(TimeZone::defaultTimeZone().name()) {
  sigset_t brokenPipe;
  sigemptyset(&brokenPipe);
  sigaddset(&brokenPipe, SIGPIPE);
  sigprocmask(SIG_BLOCK, &brokenPipe, &signalsBefore_);
  sigemptyset(&awaitedSignals_);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) sigaddset(&awaitedSignals_, signal);
  // Shells start background programs with SIGINT ignored.
  for (const int signal : {SIGINT, SIGTERM}) {
    std::signal(signal, [](int received) { ::_exit(kSignalled + received); });
  }
  signals_ = FileDescriptor(signalfd(-1, &awaitedSignals_, SFD_NONBLOCK | SFD_CLOEXEC));
  // Without a descriptor the handlers must exit: nothing would read a blocked signal.
  if (!signals_) sigemptyset(&awaitedSignals_);
}

ChangeWaiter::~ChangeWaiter() {
  sigprocmask(SIG_SETMASK, &signalsBefore_, nullptr);
}

bool ChangeWaiter::isZoneChanged() {
  std::array<char, 4096> events{};
  while (::read(zoneFolder_.number(), events.data(), events.size()) > 0) {
  }
  return TimeZone::defaultTimeZone().name() != zoneName_;
}

std::optional<ChangeWaiter::Event> ChangeWaiter::receivedSignal() {
  signalfd_siginfo received{};
  if (::read(signals_.number(), &received, sizeof received) <= 0) return std::nullopt;
  if (received.ssi_signo == SIGPIPE) return Event::kOutputGone;
  signal_ = static_cast<int>(received.ssi_signo);
  return Event::kInterrupted;
}

std::optional<ChangeWaiter::Event> ChangeWaiter::settle(std::chrono::milliseconds time) {
  pollfd signals = {signals_.number(), POLLIN, 0};
  ::poll(&signals, 1, static_cast<int>(time.count()));
  return receivedSignal();
}

ChangeWaiter::Event ChangeWaiter::wait(Date deadline) {
  // Blocked only here, so that elsewhere a signal exits at once, even while waiting for a lock.
  sigset_t before;
  sigprocmask(SIG_BLOCK, &awaitedSignals_, &before);
  const Event event = nextEvent(deadline);
  sigprocmask(SIG_SETMASK, &before, nullptr);
  return event;
}

ChangeWaiter::Event ChangeWaiter::nextEvent(Date lookAgain) {
  using Change = StoreWatcher::Change;
  const Date deadline = systemInstant(lookAgain);
  if (store_.pendingChange() == Change::kReplaced) return Event::kRestart;
  for (;;) {
    const Date now = systemNow();
    if (now >= deadline) return Event::kStale;
    timer_.fireAt(std::min(deadline, now.dateByAddingTimeInterval(store_.pollingInterval())));
    std::array<pollfd, 5> files = {{{STDOUT_FILENO, 0, 0},
                                    {signals_.number(), POLLIN, 0},
                                    {store_.fileDescriptor(), POLLIN, 0},
                                    {timer_.fileDescriptor(), POLLIN, 0},
                                    {zoneFolder_.number(), POLLIN, 0}}};
    ::poll(files.data(), files.size(), -1);
    if (const auto event = receivedSignal()) return *event;
    if (files[0].revents & (POLLERR | POLLNVAL)) return Event::kOutputGone;
    if (isZoneChanged()) return Event::kRestart;
    if (files[2].revents != 0) {
      if (const auto ended = settle(StoreWatcher::settlingTime(Change::kContent))) return *ended;
    }
    const auto change = store_.read();
    if (change == Change::kReplaced) {
      return settle(StoreWatcher::settlingTime(change)).value_or(Event::kRestart);
    }
    if (change == Change::kContent) return Event::kStale;
    if (timer_.read() == WallTimer::Event::kClockSet) return Event::kStale;
  }
}

}  // namespace vantrel::cli
