#pragma once

#include <optional>
#include <string>

#include "platform/text/DateFormatter.h"
#include "store/Planning.h"

namespace vantrel {

/// Describes plans in words for tooltips and screen readers. Rows show neither the weekday nor the
/// time zone. Main thread only.
class PlanDescription {
 public:
  PlanDescription();

  /// The date of a plan in full.
  struct When {
    std::string there;  ///< In the plan's zone.
    std::string zone;
    std::string day;                  ///< In words: "tomorrow".
    std::optional<std::string> here;  ///< In the device's zone, if that differs.
  };
  /// Returns `nullopt` for a plan without a date.
  std::optional<When> when(const Planning& plan) const;

  /// "Milky Way, Wednesday, July 15, 2026 at 11:40 PM (Europe/Madrid)".
  std::string name(const Planning& plan) const;
  /// Full date and zone, and the same instant on this device's clock where that differs.
  std::string details(const Planning& plan) const;

 private:
  std::string dateText(const Planning& plan, bool withLocalTime) const;

  mutable DateFormatter formatter_;
};

}  // namespace vantrel
