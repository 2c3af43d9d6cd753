#pragma once

#include <memory>
#include <string>

#include "platform/text/Locale.h"

namespace vantrel {

/// Phrases for spans of time, over ICU. Creating one costs about a millisecond. Not thread-safe.
class RelativeDateFormatter {
 public:
  enum class Unit { kMinute, kHour, kDay, kWeek, kMonth, kYear };

  explicit RelativeDateFormatter(const Locale& locale);
  ~RelativeDateFormatter();
  RelativeDateFormatter(RelativeDateFormatter&&) noexcept;

  /// "yesterday", "today" or "tomorrow" for -1, 0 and 1; a number for other days.
  std::string day(int days) const;
  /// "in 3 weeks", "2 hours ago". Empty if ICU fails.
  std::string relative(int count, Unit unit) const;
  /// "30 minutes". Empty if ICU fails.
  std::string span(int count, Unit unit) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace vantrel
