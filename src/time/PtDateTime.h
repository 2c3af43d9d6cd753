#pragma once

#include <cstdint>

namespace vantrel::ephemeris {

/// A date and time of day in Universal Time: Gregorian from 1582-10-05 on, Julian before.
struct PtDateTime {
  std::int32_t year = 0;   ///< Astronomical: 0 is 1 BC.
  std::int32_t month = 0;  ///< 1 to 12.
  std::int32_t day = 0;    ///< 1 to 31.
  std::int32_t hour = 0;   ///< 0 to 23.
  double minutes = 0;      ///< 0 to 60, seconds included: 12.5 is 12 min 30 s.

  /// Days since 1858-11-17 00:00 UT. Fields are not checked; those out of range add up.
  double ModifiedJulianDay() const;

  /// Sets all fields. Minutes come with single precision and five decimals; just below a whole
  /// hour they come out as 60, with the hour before. A day beyond 2^31 (or no number) gives the
  /// zero record; a negative Julian Day is truncated toward zero.
  void FromModifiedJulianDay(double modifiedJulianDay);
  void FromJulianDay(double julianDay);
};

}  // namespace vantrel::ephemeris
