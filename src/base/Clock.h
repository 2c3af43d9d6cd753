#pragma once

#include <memory>

#include "base/Date.h"

namespace vantrel {

/// Returns the current time. A replaceable service: `main` or a test installs another.
class Clock {
 public:
  virtual ~Clock() = default;
  virtual Date now() const = 0;

  /// The installed clock, otherwise the system clock, or the fixed instant in $VANTREL_NOW.
  static Clock& sharedClock();
  /// Null restores the default. Main thread only, before other threads use the clock.
  static void install(std::shared_ptr<Clock> clock) { installed_ = std::move(clock); }

 private:
  inline static std::shared_ptr<Clock> installed_;
};

}  // namespace vantrel
