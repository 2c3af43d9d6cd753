#pragma once

#include <compare>

namespace vantrel {

/// An instant in seconds since the reference date, 2001-01-01T00:00:00Z. Comparisons are exact.
class Date {
 public:
  /// Seconds from 1970-01-01T00:00:00Z to the reference date.
  static constexpr double kReferenceDateSince1970 = 978307200.0;

  constexpr Date() = default;
  constexpr explicit Date(double secondsSinceReferenceDate) : seconds_(secondsSinceReferenceDate) {}
  static constexpr Date dateWithTimeIntervalSince1970(double seconds) {
    return Date(seconds - kReferenceDateSince1970);
  }

  constexpr double timeIntervalSinceReferenceDate() const { return seconds_; }
  constexpr double timeIntervalSince1970() const { return seconds_ + kReferenceDateSince1970; }
  /// Seconds from `other` to this instant; negative if this instant is earlier.
  constexpr double timeIntervalSinceDate(Date other) const { return seconds_ - other.seconds_; }
  constexpr Date dateByAddingTimeInterval(double seconds) const { return Date(seconds_ + seconds); }

  friend constexpr auto operator<=>(Date, Date) = default;  // NOLINT(modernize-use-nullptr)

 private:
  double seconds_ = 0;
};

}  // namespace vantrel
