#pragma once

#include <optional>
#include <string>

#include "platform/DateFormatter.h"
#include "store/Planning.h"

namespace vantrel {

/// Says plans in words for tooltips and screen readers: the row itself tells neither the day of the
/// week nor whose time it is. Main thread.
class PlanDescription {
 public:
  PlanDescription();

  /// "Milky Way, Wednesday, July 15, 2026 at 11:40 PM (Europe/Madrid)".
  std::string name(const Planning& plan) const;
  /// Full date and zone, and the same instant on this device's clock where that differs.
  std::string details(const Planning& plan) const;

 private:
  std::string dateText(const Planning& plan, bool withLocalTime) const;

  mutable DateFormatter formatter_;
};

}  // namespace vantrel
