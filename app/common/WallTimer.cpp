#include "common/WallTimer.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>

namespace vantrel {

WallTimer::WallTimer() : file_(timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC)) {}

bool WallTimer::fireAt(Date instant) {
  // An all-zero time would disarm the timer.
  const double seconds = std::max(instant.timeIntervalSince1970(), 1.0);
  const double whole = std::floor(seconds);
  itimerspec when{};
  when.it_value.tv_sec = static_cast<time_t>(whole);
  when.it_value.tv_nsec = static_cast<long>((seconds - whole) * 1e9);
  const int flags = TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET;
  // ECANCELED reports an earlier clock step that was not read yet; the timer is armed nevertheless.
  return timerfd_settime(file_.number(), flags, &when, nullptr) == 0 || errno == ECANCELED;
}

WallTimer::Event WallTimer::read() {
  std::uint64_t expirations = 0;
  if (::read(file_.number(), &expirations, sizeof expirations) > 0) return Event::kReached;
  return errno == ECANCELED ? Event::kClockSet : Event::kNone;
}

}  // namespace vantrel
