#include "base/Clock.h"

#include <chrono>
#include <cstdlib>
#include <optional>

#include "base/Iso8601.h"

namespace vantrel {

namespace {

class SystemClock : public Clock {
 public:
  SystemClock() {
    if (const char* frozen = std::getenv("VANTREL_NOW")) frozen_ = dateFromIso8601String(frozen);
  }
  Date now() const override {
    if (frozen_) return *frozen_;
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return Date::dateWithTimeIntervalSince1970(std::chrono::duration<double>(sinceEpoch).count());
  }

 private:
  std::optional<Date> frozen_;
};

}  // namespace

Clock& Clock::sharedClock() {
  if (installed_) return *installed_;
  static SystemClock system;
  return system;
}

}  // namespace vantrel
