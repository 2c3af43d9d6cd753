#pragma once

#include <optional>
#include <string>

#include "platform/text/DateFormatter.h"
#include "store/Planning.h"

namespace vantrel {

/// Says plans in words for tooltips and screen readers: the row itself tells neither the day of the
/// week nor whose time it is. Main thread.
class PlanDescription {
 public:
  PlanDescription();

  /// A plan's instant, in full.
  struct When {
    std::string there;  ///< On the clocks of the plan's own zone.
    std::string zone;
    std::string day;                  ///< In words: "tomorrow".
    std::optional<std::string> here;  ///< On this device's, where that differs.
  };
  /// Nothing for a plan without a date.
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
