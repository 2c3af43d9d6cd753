#pragma once

#include <cstdint>

namespace vantrel::ephemeris {

/// A date and time of day in Universal Time: Gregorian from 1582-10-05 on, Julian before. The
/// conversions are optimised: about twice as fast as ERFA's (bench/JulianDayBench.cpp), with
/// results identical to the original formulas, which PtDateTimeTest compares for every kind of day.
struct PtDateTime {
  std::int32_t year = 0;   ///< Astronomical: 0 is 1 BC.
  std::int32_t month = 0;  ///< 1 to 12.
  std::int32_t day = 0;    ///< 1 to 31.
  std::int32_t hour = 0;   ///< 0 to 23.
  double minutes = 0;      ///< 0 to 60, seconds included: 12.5 is 12 min 30 s.

  /// Returns the days since 1858-11-17 00:00 UT. Fields out of range carry over.
  double ModifiedJulianDay() const;

  /// Sets all fields. Minutes have single precision and five decimals, and are 60 just below a
  /// whole hour: 23:59:59.9999 is hour 23, minutes 60. A NaN or a day beyond 2^31 sets all fields
  /// to 0; a negative Julian Day is truncated toward zero.
  void FromModifiedJulianDay(double modifiedJulianDay);
  void FromJulianDay(double julianDay);
};

}  // namespace vantrel::ephemeris
