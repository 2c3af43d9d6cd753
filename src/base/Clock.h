#pragma once

#include <memory>

#include "base/Date.h"

namespace vantrel {

/// Tells the present instant. Replaceable: `main` or a test installs the one to use.
class Clock {
 public:
  virtual ~Clock() = default;
  virtual Date now() const = 0;

  /// The installed clock; the system's (or the instant frozen by $VANTREL_NOW) when none was.
  static Clock& sharedClock();
  /// Null brings the system's back. Main thread, before others ask.
  static void install(std::shared_ptr<Clock> clock);
};

}  // namespace vantrel
