#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

/// A period without changes of a zone's clock. Instants are in seconds since 1970-01-01T00:00:00Z.
struct ZonePeriod {
  /// The end of a period without an end; `-kForever` is the begin of one without a begin.
  static constexpr std::int64_t kForever = std::int64_t{1} << 60;

  std::int64_t begin = -kForever;
  std::int64_t end = kForever;
  int offset = 0;  ///< Seconds east of Greenwich, less than 26 hours.
  bool isDaylight = false;
  std::string_view abbreviation;  ///< Owned by the rule that returned the period.
};

/// A time zone rule in the POSIX form of the variable TZ, with the hours from -167 to 167 of RFC
/// 8536:
///
///     <+0545>-5:45                   no daylight saving time; offsets count westward
///     CET-1CEST,M3.5.0,M10.5.0/3     from the last Sunday of March, 2:00, to that of October, 3:00
///     EST5EDT                        without days, those of the United States, as in libc
///
/// An immutable value; thread-safe.
class PosixZoneRule {
 public:
  /// `nullopt` unless the complete `text` is a rule.
  static std::optional<PosixZoneRule> parsed(std::string_view text);
  /// A clock that never changes. `offset` is in seconds east of Greenwich.
  PosixZoneRule(int offset, std::string abbreviation);

  /// `instant` must be between `-kForever` and `kForever`.
  ZonePeriod periodAt(std::int64_t instant) const;

  friend bool operator==(const PosixZoneRule&, const PosixZoneRule&) = default;

 private:
  friend class PosixZoneParser;

  struct Clock {
    int offset = 0;
    std::string abbreviation;
    bool isDaylight = false;
    friend bool operator==(const Clock&, const Clock&) = default;
  };
  /// A day of each year and the seconds from its midnight.
  struct Change {
    enum class Form { kDayWithoutLeapDay, kDayOfYear, kWeekdayOfMonth };
    std::int64_t wallTimeInYear(int year) const;

    Form form = Form::kWeekdayOfMonth;
    int month = 0;
    int week = 0;  ///< 5 is the last of the month.
    int day = 0;   ///< 1 to 365, 0 to 365, or 0 (Sunday) to 6, depending on `form`.
    int seconds = 0;
    friend bool operator==(const Change&, const Change&) = default;
  };
  struct Daylight {
    Clock clock;
    Change start;
    Change end;
    friend bool operator==(const Daylight&, const Daylight&) = default;
  };

  std::int64_t startInYear(int year) const;
  std::int64_t endInYear(int year) const;

  Clock standard_;
  std::optional<Daylight> daylight_;
};

}  // namespace vantrel
